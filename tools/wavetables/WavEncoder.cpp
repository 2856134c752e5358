#include "WavEncoder.h"

#include <algorithm>
#include <cmath>

namespace Orv::Tools::Wavetables
{
namespace
{
    constexpr int bitsPerSample = 24;
    constexpr int bytesPerSample = bitsPerSample / 8;
    constexpr int32_t largestSample = (1 << (bitsPerSample - 1)) - 1;
    constexpr uint16_t pcmFormatTag = 1;
    constexpr uint32_t fmtChunkSize = 16;
    // "WAVE" and the two chunk headers that follow RIFF's own.
    constexpr uint32_t riffOverhead = 4 + 8 + fmtChunkSize + 8;

    void put (std::vector<uint8_t>& out, uint32_t value, int bytes)
    {
        for (int i = 0; i < bytes; ++i)
            out.push_back (static_cast<uint8_t> ((value >> (8 * i)) & 0xff));
    }

    void putTag (std::vector<uint8_t>& out, const char* tag)
    {
        for (int i = 0; i < 4; ++i)
            out.push_back (static_cast<uint8_t> (tag[i]));
    }
} // namespace

std::vector<uint8_t> encodeWav (const Channels& channels, int sampleRate)
{
    const auto numChannels = static_cast<uint32_t> (channels.size());
    const auto frames = static_cast<uint32_t> (channels.front().size());
    const auto blockAlign = numChannels * bytesPerSample;
    const auto dataSize = frames * blockAlign;

    std::vector<uint8_t> out;
    out.reserve (riffOverhead + 8 + dataSize);

    putTag (out, "RIFF");
    put (out, riffOverhead + dataSize, 4);
    putTag (out, "WAVE");

    putTag (out, "fmt ");
    put (out, fmtChunkSize, 4);
    put (out, pcmFormatTag, 2);
    put (out, numChannels, 2);
    put (out, static_cast<uint32_t> (sampleRate), 4);
    put (out, static_cast<uint32_t> (sampleRate) * blockAlign, 4);
    put (out, blockAlign, 2);
    put (out, bitsPerSample, 2);

    putTag (out, "data");
    put (out, dataSize, 4);
    for (uint32_t frame = 0; frame < frames; ++frame)
    {
        for (const auto& channel : channels)
        {
            const auto scaled = std::lround (std::clamp (channel[frame], -1.0, 1.0) * largestSample);
            put (out, static_cast<uint32_t> (static_cast<int32_t> (scaled)), bytesPerSample);
        }
    }
    return out;
}
} // namespace Orv::Tools::Wavetables
