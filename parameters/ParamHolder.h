#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <type_traits>
#include <utility>

namespace Orv::Audio
{
/** One JUCE parameter of a parameter list, with the flags that say where
    its value is kept. Until a processor adopts the parameter the holder owns
    it; afterwards the processor's parameter tree does. Made and destroyed on
    the message thread. */
class ParamHolderBase
{
public:
    ParamHolderBase() = default;
    virtual ~ParamHolderBase() = default;

    ParamHolderBase (const ParamHolderBase&) = delete;
    ParamHolderBase& operator= (const ParamHolderBase&) = delete;

    /** Any thread: the held parameter, whoever owns it. */
    virtual juce::AudioProcessorParameter* getParameter() const = 0;

    /** Set once a processor has taken ownership of the parameter; from then
        on the holder no longer deletes it. */
    bool adopted = false;
    /** Whether the value is written to and read from preset files. */
    bool inPreset = true;
    /** Whether the value is part of the host's state and undo snapshots. */
    bool inState = true;
};

namespace ParamHolderDetail
{
    /** The version hint of every parameter id in this plug-in family: the
        framework needs one above 0 for hosts that sort parameters by it. */
    inline constexpr int versionHint = 1;

    template <typename... Args>
    struct StartsWithText : std::false_type
    {
    };

    template <typename First, typename... Rest>
    struct StartsWithText<First, Rest...>
        : std::bool_constant<std::is_convertible_v<std::decay_t<First>, juce::String>
                             && ! std::is_same_v<std::decay_t<First>, juce::ParameterID>>
    {
    };

    /** How a holder builds its parameter from a plain id, a display name and
        the range: by default the parameter's own constructor takes exactly
        that; JUCE's classes need an ID with a version hint. */
    template <typename T>
    struct Maker
    {
        template <typename... Args>
        static T* fromText (Args&&... args)
        {
            return new T (std::forward<Args> (args)...);
        }
    };

    template <>
    struct Maker<juce::AudioParameterFloat>
    {
        /** The range's interval is JUCE's 0.01, so the text has two decimals. */
        static juce::AudioParameterFloat* fromText (const juce::String& id, const juce::String& name,
                                                    float minimum, float maximum, float defaultValue)
        {
            return new juce::AudioParameterFloat ({ id, versionHint }, name, minimum, maximum, defaultValue);
        }
    };

    template <>
    struct Maker<juce::AudioParameterInt>
    {
        static juce::AudioParameterInt* fromText (const juce::String& id, const juce::String& name,
                                                  int minimum, int maximum, int defaultValue)
        {
            return new juce::AudioParameterInt ({ id, versionHint }, name, minimum, maximum, defaultValue);
        }
    };

    template <>
    struct Maker<juce::AudioParameterBool>
    {
        static juce::AudioParameterBool* fromText (const juce::String& id, const juce::String& name, bool defaultValue)
        {
            return new juce::AudioParameterBool ({ id, versionHint }, name, defaultValue);
        }
    };

    template <>
    struct Maker<juce::AudioParameterChoice>
    {
        static juce::AudioParameterChoice* fromText (const juce::String& id, const juce::String& name,
                                                     const juce::StringArray& choices, int defaultIndex)
        {
            return new juce::AudioParameterChoice ({ id, versionHint }, name, choices, defaultIndex);
        }
    };
} // namespace ParamHolderDetail

/** Holds a parameter of type T.

    Given a plain id first (any string), the holder reads the rest as the
    display name, then minimum, maximum and default (a bool takes only the
    default, a choice its choices and default index) and gives the id the
    family's version hint. Given anything else first, such as a
    juce::ParameterID, the arguments go to T's constructor unchanged.

    The parameter lives as long as the holder, or, once adopted, as long as
    the processor that adopted it. Message thread. */
template <typename T>
class ParamHolder : public ParamHolderBase
{
public:
    template <typename... Args>
    explicit ParamHolder (Args&&... args) : parameter (make (std::forward<Args> (args)...))
    {
    }

    ~ParamHolder() override
    {
        if (! adopted)
            delete parameter;
    }

    /** Any thread. */
    juce::AudioProcessorParameter* getParameter() const override { return parameter; }

    /** Any thread. */
    T* get() const noexcept { return parameter; }
    T* operator->() const noexcept { return parameter; }
    T& operator*() const noexcept { return *parameter; }

private:
    template <typename... Args>
    static T* make (Args&&... args)
    {
        if constexpr (ParamHolderDetail::StartsWithText<Args...>::value)
            return ParamHolderDetail::Maker<T>::fromText (std::forward<Args> (args)...);
        else
            return new T (std::forward<Args> (args)...);
    }

    T* const parameter;
};
} // namespace Orv::Audio
