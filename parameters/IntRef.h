#pragma once

#include "parameters/IntLike.h"

#include <juce_core/juce_core.h>

#include <algorithm>
#include <vector>

namespace Orv::Parameters
{
/** An integer field of a record between two bounds. Setting past one bound
    wraps round to the other, so that arrows stepping through the values go
    round in a circle.

    Its menu and getNumChoices count the length of the range, not the
    integers in it (bounds 1 and 128 give 127), and the menu lists indices
    from 0 whatever the bounds. Both are relied upon as they are.

    Message thread only; getRange builds a range on every call, which is
    fine because the audio thread never comes through here. */
template <typename IntType>
class IntRef : public IntLike
{
public:
    /** The field must outlive every Connector to this parameter. */
    IntRef (IntType& valueToUse, float lowerBound, float upperBound)
        : value (&valueToUse), start (lowerBound), end (upperBound)
    {
    }

    /** Message thread only: the value's place in the range, clamped to 0..1. */
    float getNormalised() const override
    {
        return getRange().convertTo0to1 (static_cast<float> (getIntValue()));
    }

    /** Message thread only: the range's value for v, truncated, then setInt. */
    void setNormalisedNotifying (float normalised) override
    {
        setInt (static_cast<int> (getRange().convertFrom0to1 (normalised)));
    }

    /** Message thread only: stores through setIntValue, which wraps. */
    void setInt (int newValue) override { setIntValue (static_cast<IntType> (newValue)); }

    /** Message thread only: truncates toward zero, then setInt. */
    void setFloat (float newValue) override { setInt (static_cast<int> (newValue)); }

    /** Message thread only: the decimal text of the range's value for v. */
    juce::String getTextFor (float normalised) const override
    {
        return getTextForInt (static_cast<int> (getRange().convertFrom0to1 (normalised)));
    }

    /** Message thread only: the decimal text of the stored value. */
    juce::String getText() const override { return decimalText (static_cast<int> (getIntValue())); }

    /** Message thread only: the decimal text of the index itself. */
    juce::String getTextForInt (int index) const override { return decimalText (index); }

    /** Message thread only. */
    float getFloat() const override { return static_cast<float> (getIntValue()); }

    bool isDiscrete() const override { return true; }

    /** Message thread only: the length of the range, with no plus one. */
    int getNumChoices() const override { return static_cast<int> (std::max (end, start) - start); }

    //==============================================================================
    /** Message thread only: the two bounds, continuous, unskewed. */
    virtual juce::NormalisableRange<float> getRange() const { return { start, end, 0.0f, 1.0f }; }

    /** Message thread only: the text of every integer from the lower bound up
        to, but without, the upper bound. */
    virtual std::vector<juce::String> getAllChoices() const
    {
        std::vector<juce::String> choices;

        for (int i = static_cast<int> (start); i < static_cast<int> (std::max (end, start)); ++i)
            choices.push_back (decimalText (i));

        return choices;
    }

    /** Message thread only: the stored value as it stands. */
    virtual IntType getIntValue() const { return *value; }

    /** Message thread only: stores a value, wrapping past either bound to the
        other. The upper bound is checked first, so a value above it always
        lands on the lower bound. */
    virtual void setIntValue (IntType newValue)
    {
        const auto lo = static_cast<IntType> (start);
        const auto hi = std::max (static_cast<IntType> (std::max (end, start)), lo);

        if (newValue > hi)
            newValue = lo;

        if (newValue < lo)
            newValue = hi;

        *value = newValue;
    }

protected:
    static juce::String decimalText (int i) { return juce::String (i); }

private:
    IntType* value;
    float start;
    float end;
};
} // namespace Orv::Parameters
