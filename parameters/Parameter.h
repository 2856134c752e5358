#pragma once

#include "parameters/MenuItems.h"

#include <juce_core/juce_core.h>

#include <limits>

namespace Orv
{
class Reflector;
}

namespace Orv::Parameters
{
/** The one interface behind every control of the GUI: a value seen at once as
    a normalised float, a float and an int in its own unit, a bool and text.

    A subclass implements the one link of the chain of defaults that it can
    serve and inherits the rest, so the order in which the defaults lean on
    each other matters:
      setNormalised -> setNormalisedNotifying
      setInt -> setFloat -> setNormalised
      setBool -> setNormalisedNotifying
      getInt -> getFloat -> getNormalised; getBool -> getNormalised

    The order of the virtual operations is fixed; subclasses elsewhere are
    written against it. Unless said otherwise, message thread only: the audio
    thread reads the values underneath directly and never comes through here. */
class Parameter
{
public:
    /** The named results of the defaults. */
    static constexpr int unlimitedChoices = std::numeric_limits<int>::max();
    static constexpr float boolThreshold = 0.5f;

    virtual ~Parameter() = default;

    /** The value between 0 and 1. */
    virtual float getNormalised() const = 0;

    /** Sets the normalised value; by default the same as the notifying setter. */
    virtual void setNormalised (float normalised);

    /** Sets the value in its own unit; by default through setFloat. */
    virtual void setInt (int value);

    /** Sets fully on or fully off. */
    virtual void setBool (bool value);

    /** Sets the value in its own unit; by default taken as normalised. */
    virtual void setFloat (float value);

    /** Writes the value as its text under "value", or reads it back. A load
        without the key leaves the value as it is. Same thread as the pass. */
    virtual void reflect (Reflector& reflector);

    /** The name shown to the user and given to undo steps. */
    virtual juce::String getName() const;

    /** The text for a normalised value. The default ignores the argument and
        shows the present normalised value. */
    virtual juce::String getTextFor (float normalised) const;

    /** The text of the present value. */
    virtual juce::String getText() const;

    /** The text of the i-th choice; empty unless the parameter is discrete. */
    virtual juce::String getTextForInt (int index) const;

    /** Parses text as a number and sets it through setFloat. Text that is no
        number gives 0, which the setter then applies. */
    virtual void setFromText (const juce::String& text);

    /** Sets the normalised value and lets whoever watches know. */
    virtual void setNormalisedNotifying (float normalised) = 0;

    /** The choices for a menu: a root of type subMenuRoot, with one entry per
        index from 0 when the parameter is discrete. */
    virtual MenuItems::Item getMenuChoices();

    /** The value in its own unit; by default the normalised value. */
    virtual float getFloat() const;

    /** getFloat truncated toward zero. */
    virtual int getInt() const;

    /** True only when the normalised value is above one half. */
    virtual bool getBool() const;

    /** True where a gesture on this parameter forms an undo step. */
    virtual bool isUndoable() const;

    /** True when the value moves in steps that a menu can list. */
    virtual bool isDiscrete() const;

    /** How many entries a menu lists; unlimited by default. */
    virtual int getNumChoices() const;

    /** The normalised value a reset goes back to. */
    virtual float getDefaultNormalised() const;

    /** True between beginGesture and endGesture. */
    virtual bool isInGesture() const = 0;

    /** Brackets a user's change; no host is told by the plain mix-ins. */
    virtual void beginGesture();
    virtual void endGesture();
};
} // namespace Orv::Parameters
