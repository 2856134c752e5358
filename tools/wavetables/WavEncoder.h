#pragma once

#include "WaveRenderer.h"

#include <cstdint>
#include <vector>

namespace Orv::Tools::Wavetables
{
/** The bytes of a 24-bit PCM WAV file of these channels (all of one length,
    values in -1 to 1, clipped beyond), with nothing but the "fmt " and "data"
    chunks. */
std::vector<uint8_t> encodeWav (const Channels& channels, int sampleRate);
} // namespace Orv::Tools::Wavetables
