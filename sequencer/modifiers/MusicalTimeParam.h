#pragma once

#include "core/CallbackFunc.h"
#include "parameters/IntLike.h"

#include <cstdint>

namespace Orv::Sequencer::Modifiers
{
/** An integer field of a bar, edited as a parameter. A change of the field
    runs the callback; setting the value it already holds does nothing.

    Holds a plain pointer into its owner's bar and must not outlive it.
    Message thread only. */
class MusicalTimeParam : public Parameters::IntLike
{
public:
    MusicalTimeParam (std::int32_t& fieldToEdit, CallbackFunc onChangeToUse);

    /** Message thread only: stores the value and runs the callback, unless
        the field already holds it. */
    void setInt (int value) override;

    /** Message thread only: truncates, then setInt. */
    void setFloat (float value) override;

    /** Message thread only: the field. */
    float getFloat() const override;

    /** Message thread only: the field in decimal. */
    juce::String getText() const override;

protected:
    std::int32_t getField() const noexcept { return *field; }

private:
    std::int32_t* field;
    CallbackFunc onChange;
};
} // namespace Orv::Sequencer::Modifiers
