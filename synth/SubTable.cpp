#include "synth/SubTable.h"

#include "core/Singleton.h"

#include <cmath>

namespace Orv::Audio::WavetableSynth
{
namespace
{
    constexpr float twoPi = 6.2831855f;
}

SubTable::SubTable() : samples (1, numSamples)
{
    auto* data = samples.getWritePointer (0);
    for (int i = 0; i < numSamples; ++i)
        data[i] = std::sin ((float) i * twoPi / (float) numSamples);
}

const juce::AudioBuffer<float>& SubTable::getInstance()
{
    return Singleton<SubTable>::get()->samples;
}
} // namespace Orv::Audio::WavetableSynth
