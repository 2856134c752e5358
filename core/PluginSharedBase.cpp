#include "core/PluginSharedBase.h"

#include "core/StateBlob.h"
#include "persistence/JsonText.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

namespace Orv::Audio::Plugin
{
namespace
{
    constexpr const char* flatParamsKey = "FlatParams";

    bool onMessageThread()
    {
        auto* mm = juce::MessageManager::getInstanceWithoutCreating();
        return mm != nullptr && mm->isThisTheMessageThread();
    }

    juce::String idOf (juce::AudioProcessorParameter& parameter)
    {
        if (auto* withId = dynamic_cast<juce::AudioProcessorParameterWithID*> (&parameter))
            return withId->paramID;
        return {};
    }

    using FlatValues = std::vector<std::pair<juce::AudioProcessorParameter*, float>>;

    /** The hosted values the JSON gives, or false when one of them is no
        number: then the blob is not ours to load at all. */
    bool readFlatValues (const nlohmann::json& json, const std::vector<juce::AudioProcessorParameter*>& hosted,
                         FlatValues& result)
    {
        const auto found = json.find (flatParamsKey);
        if (found == json.end() || ! found->is_object())
            return true;

        for (auto* parameter : hosted)
        {
            const auto id = idOf (*parameter);
            if (id.isEmpty())
                continue;

            const auto member = found->find (id.toStdString());
            if (member == found->end())
                continue;

            if (member->is_boolean())
                result.emplace_back (parameter, member->get<bool>() ? 1.0f : 0.0f);
            else if (member->is_number())
                result.emplace_back (parameter, (float) member->get<double>());
            else
                return false;
        }

        return true;
    }

    void apply (const FlatValues& values)
    {
        for (const auto& [parameter, value] : values)
        {
            // Values are normalised; a file's stray number is held to the range.
            const auto normalised = std::isnan (value) ? 0.0f : std::clamp (value, 0.0f, 1.0f);
            if (parameter->getValue() != normalised)
                parameter->setValueNotifyingHost (normalised);
        }
    }
} // namespace

SharedBase::~SharedBase() { *aliveToken = false; }

//==============================================================================
void SharedBase::getStateInformation (juce::MemoryBlock& destData)
{
    if (presetState == nullptr)
    {
        destData.reset();
        return;
    }

    destData = StateBlob::write (onMessageThread() ? makeStateText() : makeStateTextOnMessageThread());
}

std::string SharedBase::makeStateTextOnMessageThread()
{
    struct Job
    {
        juce::WaitableEvent done;
        std::string text;
        std::atomic<bool> abandoned { false };
    };

    auto job = std::make_shared<Job>();
    const std::weak_ptr<bool> alive = aliveToken;

    const auto posted = juce::MessageManager::callAsync ([this, job, alive] {
        if (const auto token = alive.lock(); token != nullptr && *token && ! job->abandoned.load())
        {
            try
            {
                job->text = makeStateText();
            }
            catch (...)
            {
            }
        }
        job->done.signal();
    });

    if (posted && job->done.wait (saveWaitMs))
        return job->text;

    // A message thread that does not answer must not hang the host: the state
    // is read from here instead.
    job->abandoned.store (true);
    return makeStateText();
}

std::string SharedBase::makeStateText()
{
    // A host that restores and saves at once must get back what it gave: a
    // restore still waiting for its tick is loaded before the save.
    presetTask.run();

    auto json = presetState->toJson (ReflectContext::forHostState());

    auto flat = nlohmann::json::object();
    for (auto* parameter : hostedParameters)
        if (const auto id = idOf (*parameter); id.isNotEmpty())
            flat[id.toStdString()] = parameter->getValue();

    json[flatParamsKey] = std::move (flat);
    return json.dump (-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

//==============================================================================
void SharedBase::setStateInformation (const void* data, int sizeInBytes)
{
    presetTask.set ({});

    if (presetState == nullptr)
        return;

    const auto text = StateBlob::read (data, sizeInBytes);
    if (text.empty())
        return;

    auto json = Json::fromText (text);
    if (! json.is_object())
        return;

    FlatValues flat;
    if (! readFlatValues (json, hostedParameters, flat))
        return;

    json.erase (flatParamsKey);

    FlatValues previous;
    for (const auto& entry : flat)
        previous.emplace_back (entry.first, entry.first->getValue());

    apply (flat);

    if (json.empty())
        return;

    presetTask.set ([this, json = std::move (json), previous = std::move (previous)] {
        if (! restoreState (json))
            apply (previous);
    });
}

bool SharedBase::restoreState (const nlohmann::json& json)
{
    const auto context = ReflectContext::forHostState();
    nlohmann::json before;

    try
    {
        before = presetState->toJson (context);
        presetState->loadJson (json, context);
        return true;
    }
    catch (...)
    {
    }

    try
    {
        if (! before.is_null())
            presetState->loadJson (before, context);
    }
    catch (...)
    {
        // What this state saved a moment ago always loads; nothing more can
        // be done if even that fails.
    }
    return false;
}
} // namespace Orv::Audio::Plugin
