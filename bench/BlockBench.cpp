#include "core/Processor.h"
#include "core/ShutdownDeleter.h"

#include <benchmark/benchmark.h>
#include <juce_gui_basics/juce_gui_basics.h>

namespace
{
constexpr double sampleRate = 48000.0;

class PlayingHost : public juce::AudioPlayHead
{
public:
    juce::Optional<PositionInfo> getPosition() const override { return info; }
    PositionInfo info;
};

/** One block of the whole processor with a playing host and a steady stream of
    notes and controllers. Reported as multiples of real time. */
void processorBlock (benchmark::State& benchState)
{
    const auto blockSize = static_cast<int> (benchState.range (0));
    const auto eventsPerBlock = static_cast<int> (benchState.range (1));

    Orv::Audio::Plugins::Halvane::Processor processor;
    PlayingHost host;
    host.info.setIsPlaying (true);
    host.info.setBpm (120.0);
    processor.setPlayHead (&host);
    processor.prepareToPlay (sampleRate, blockSize);

    juce::AudioBuffer<float> audio (2, blockSize);
    juce::MidiBuffer in, midi;
    for (int i = 0; i < eventsPerBlock; ++i)
        in.addEvent (i % 2 == 0 ? juce::MidiMessage::noteOn (1 + i % 16, 36 + i % 60, (juce::uint8) 100)
                                : juce::MidiMessage::controllerEvent (1 + i % 16, 1, i % 128),
                     (i * blockSize) / juce::jmax (1, eventsPerBlock));

    int64_t time = 0;
    for (auto _ : benchState)
    {
        midi.clear();
        for (const auto event : in)
            midi.addEvent (event.data, event.numBytes, event.samplePosition);
        host.info.setTimeInSamples (time);
        host.info.setPpqPosition (static_cast<double> (time) * 2.0 / sampleRate);
        processor.processBlock (audio, midi);
        benchmark::DoNotOptimize (midi.getNumEvents());
        time += blockSize;
    }

    benchState.counters["xRealTime"] = benchmark::Counter (
        static_cast<double> (benchState.iterations()) * blockSize / sampleRate, benchmark::Counter::kIsRate);
}
} // namespace

BENCHMARK (processorBlock)->Args ({ 128, 0 })->Args ({ 128, 32 })->Args ({ 1024, 256 });

int main (int argc, char** argv)
{
    juce::ScopedJuceInitialiser_GUI juce;
    benchmark::Initialize (&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    Orv::ShutdownDeleter::releaseAll();
    return 0;
}
