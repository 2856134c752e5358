#pragma once

#include "core/CallbackFunc.h"
#include "parameters/DefaultGesture.h"
#include "sequencer/modifiers/Bar.h"

namespace Orv::Sequencer::Modifiers
{
/** The denominator of a bar, one of 16, 8, 4 and 2. Reading and writing are
    tabled apart: a read places the four values at thirds, a write truncates
    through a stepped range of four indices, and the default lies between
    the rows for 4 and 2. A change runs the callback; an unchanged value
    tells nobody.

    Not an integer parameter: the value it shows is the denominator itself.
    Message thread only. */
class DenumParam : public Parameters::DefaultGesture
{
public:
    static constexpr float defaultNormalised = 0.75f;

    DenumParam (Bar& barToEdit, CallbackFunc onChangeToUse);

    /** Message thread only: 0, 1/3, 2/3 or 1 for 16, 8, 4 or 2; 0 for any other. */
    float getNormalised() const override;

    /** Message thread only: stores the tabled denominator, if it differs. */
    void setNormalisedNotifying (float normalised) override;

    /** Message thread only: the denominator. */
    float getFloat() const override;

    /** Message thread only: the denominator in decimal. */
    juce::String getText() const override;

    float getDefaultNormalised() const override { return defaultNormalised; }

private:
    Bar* bar;
    CallbackFunc onChange;
};
} // namespace Orv::Sequencer::Modifiers
