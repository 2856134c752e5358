#pragma once

namespace Orv::Midi
{
/** A 7-bit MIDI value (velocity, controller value) times this gives 0 to 1.
    It is 1/127 as the float that the rest of this family of plug-ins uses, so
    127 gives 1.0 only up to float rounding. */
constexpr float sevenBitScale = 0.007874016f;
} // namespace Orv::Midi
