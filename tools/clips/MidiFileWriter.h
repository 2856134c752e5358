#pragma once

#include "ClipSource.h"

#include <cstdint>
#include <vector>

namespace Orv::Tools::Clips
{
/** The bytes of a standard MIDI file of the clip: format 0, one track named
    after the clip, 480 ticks per quarter note, 120 BPM and 4/4 at the start,
    notes on channel 1, and the end of the track at the clip's last bar line so
    that a player loops it by whole bars. */
std::vector<uint8_t> writeMidiFile (const Clip& clip);
} // namespace Orv::Tools::Clips
