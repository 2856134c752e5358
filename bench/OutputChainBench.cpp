#include "synth/DelayParams.h"
#include "synth/OutputChain.h"

#include <benchmark/benchmark.h>

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int blockSize = 128;
constexpr int numChannels = 2;
constexpr float mix = 0.5f;
constexpr float masterGain = 1.0f;
constexpr double tempo = 120.0;
constexpr int seed = 1;

/** Delay, mix, master gain and level on a stereo block of noise, the
    parameters read each block as the processor does. Reported as multiples
    of real time. */
void outputChain (benchmark::State& state)
{
    Orv::Audio::AnalogDelay::Params params;
    params.mix->setValueNotifyingHost (params.mix->convertTo0to1 (mix));

    Orv::Audio::Plugins::Halvane::OutputChain chain;
    chain.prepare (numChannels, sampleRate, blockSize);

    juce::AudioBuffer<float> audio (numChannels, blockSize);
    juce::Random random (seed);
    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < blockSize; ++i)
            audio.setSample (c, i, random.nextFloat() * 2.0f - 1.0f);

    for (auto _ : state)
    {
        const auto level = chain.process (audio, params, masterGain, tempo, true);
        benchmark::DoNotOptimize (level);
    }

    state.counters["xRealTime"] = benchmark::Counter (
        static_cast<double> (state.iterations()) * blockSize / sampleRate, benchmark::Counter::kIsRate);
}
} // namespace

BENCHMARK (outputChain);
