#include "synth/SampleList.h"
#include "synth/Synth.h"
#include "synth/WavetableParams.h"

#include <benchmark/benchmark.h>

namespace
{
using namespace Orv::Audio::WavetableSynth;

constexpr double sampleRate = 48000.0;
constexpr int blockSize = 128;
constexpr int numChannels = 2;
constexpr int lowestNote = 30;
constexpr juce::uint8 velocity = 100;

/** Renders held notes in blocks, the parameters read each block as the
    processor does. Reported as multiples of real time. */
void renderHeld (benchmark::State& state, Params& params, int numNotes)
{
    Synth synth (Synth::defaultNumVoices);
    synth.prepare (numChannels, sampleRate, blockSize);

    juce::AudioBuffer<float> audio (numChannels, blockSize);
    juce::MidiBuffer notes;
    for (int n = 0; n < numNotes; ++n)
        notes.addEvent (juce::MidiMessage::noteOn (1, lowestNote + n, velocity), 0);

    synth.beginBlock (params);
    synth.renderNextBlock (audio, notes);

    const juce::MidiBuffer none;
    for (auto _ : state)
    {
        synth.beginBlock (params);
        synth.renderNextBlock (audio, none);
        benchmark::DoNotOptimize (audio.getReadPointer (0));
    }

    state.counters["xRealTime"] = benchmark::Counter (
        static_cast<double> (state.iterations()) * blockSize / sampleRate, benchmark::Counter::kIsRate);
}

void setType (OSCParams& osc, const char* wave)
{
    osc.type->setValueNotifyingHost (osc.type->convertTo0to1 ((float) SampleList::getWaveNames().indexOf (wave)));
}

/** One note of one oscillator, with the filter and the sub on. */
void oneVoice (benchmark::State& state)
{
    Params params;
    setType (params.oscillators.osc[0], "Saw");
    *params.oscillators.osc[0].enable = true;
    renderHeld (state, params, 1);
}

/** Every voice busy, each with four oscillators at unison 2, the filter and
    the sub: the heaviest load a sound can ask for. */
void fullLoad (benchmark::State& state)
{
    Params params;
    for (auto& osc : params.oscillators.osc)
    {
        setType (osc, "Saw");
        *osc.enable = true;
        *osc.unison->unison = 2;
    }
    renderHeld (state, params, Synth::defaultNumVoices);
}
} // namespace

BENCHMARK (oneVoice);
BENCHMARK (fullLoad);
