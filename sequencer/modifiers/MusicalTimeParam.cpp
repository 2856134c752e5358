#include "sequencer/modifiers/MusicalTimeParam.h"

namespace Orv::Sequencer::Modifiers
{
MusicalTimeParam::MusicalTimeParam (std::int32_t& fieldToEdit, CallbackFunc onChangeToUse)
    : field (&fieldToEdit), onChange (std::move (onChangeToUse))
{
}

void MusicalTimeParam::setInt (int value)
{
    if (*field == value)
        return;

    *field = static_cast<std::int32_t> (value);
    onChange();
}

void MusicalTimeParam::setFloat (float value) { setInt (static_cast<int> (value)); }

float MusicalTimeParam::getFloat() const { return static_cast<float> (*field); }

juce::String MusicalTimeParam::getText() const { return juce::String (*field); }
} // namespace Orv::Sequencer::Modifiers
