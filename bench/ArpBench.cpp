#include "core/Processor.h"

#include <benchmark/benchmark.h>

namespace
{
constexpr double sampleRate = 48000.0;
constexpr double tempo = 120.0;
constexpr double secondsPerMinute = 60.0;
constexpr int blockSize = 128;
constexpr int numSteps = 64;
constexpr int numRows = 5;     // one row for each held note
constexpr double stepGate = 0.5; // of a step, so that every step starts and ends
constexpr int heldNotes[numRows] = { 48, 55, 60, 64, 67 };

class PlayingHost : public juce::AudioPlayHead
{
public:
    juce::Optional<PositionInfo> getPosition() const override { return info; }
    PositionInfo info;
};

/** The whole processor with the arp on and no synth behind it, playing a
    pattern with every one of its 64 steps drawn, over rows 64 to 68, on a
    five-note chord under a playing host. Reported as multiples of real time. */
void arpBlock (benchmark::State& benchState)
{
    using namespace Orv::Audio::Plugins::Halvane;

    Processor processor;
    // The arp alone: whatever sound the instance starts with stays silent.
    *processor.getState().synth.synthEnable = false;
    auto& sequencer = processor.getState().sequencer;
    auto& steps = sequencer.patterns[0]->sequence.steps;
    steps.clear();
    for (int i = 0; i < numSteps; ++i)
    {
        Orv::Sequencer::Step step;
        step.time = { (double) i / numSteps, stepGate / numSteps };
        step.event.noteNum = ChordMap::centreRow + i % numRows;
        step.enabled = true;
        steps.push_back (step);
    }
    sequencer.rebuild();

    PlayingHost host;
    host.info.setIsPlaying (true);
    host.info.setBpm (tempo);
    processor.setPlayHead (&host);
    processor.prepareToPlay (sampleRate, blockSize);

    juce::AudioBuffer<float> audio (2, blockSize);
    juce::MidiBuffer midi;
    for (const auto note : heldNotes)
        midi.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 100), 0);

    const auto quartersPerSample = tempo / (secondsPerMinute * sampleRate);
    int64_t time = 0;
    int64_t notesOut = 0;
    for (auto _ : benchState)
    {
        host.info.setTimeInSamples (time);
        host.info.setPpqPosition ((double) time * quartersPerSample);
        processor.processBlock (audio, midi);
        notesOut += midi.getNumEvents();
        midi.clear();
        time += blockSize;
    }

    benchState.counters["xRealTime"] = benchmark::Counter (
        static_cast<double> (benchState.iterations()) * blockSize / sampleRate, benchmark::Counter::kIsRate);
    benchState.counters["eventsPerSecond"] = benchmark::Counter (
        (double) notesOut / ((double) benchState.iterations() * blockSize / sampleRate));
}
} // namespace

BENCHMARK (arpBlock);
