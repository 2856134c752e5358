#include "core/Processor.h"
#include "sequencer/LivePatterns.h"

#include <benchmark/benchmark.h>

// What the message thread pays when a host opens, saves or reloads a
// session, and when an edit rebuilds the patterns: none of it is on the
// audio thread, but a slow save stalls the host's project save.
namespace
{
using Orv::Audio::Plugins::Halvane::LivePatterns;
using Orv::Audio::Plugins::Halvane::Processor;

constexpr int stepsPerPattern = 64;
constexpr int rowsInUse = 11;
constexpr int firstRow = 59;
constexpr double patternLength = 16.0;

/** Every pattern full: 64 steps over four bars on the editor's rows, some
    off, as a busy session holds them. */
void fillPatterns (LivePatterns& live)
{
    for (size_t p = 0; p < live.patterns.size(); ++p)
    {
        auto& sequence = live.patterns[p]->sequence;
        sequence.duration.duration = patternLength;
        sequence.grid = stepsPerPattern;
        sequence.steps.clear();
        for (int i = 0; i < stepsPerPattern; ++i)
        {
            Orv::Sequencer::Step step;
            step.time = { static_cast<double> (i) / stepsPerPattern, 0.9 / stepsPerPattern };
            step.event.noteNum = firstRow + (i * (int) (p + 1)) % rowsInUse;
            step.enabled = (i + (int) p) % 5 != 0;
            sequence.steps.push_back (step);
        }
    }
    live.rebuild();
}

/** A new instance with its tables, parameters, patterns and synth, as a
    host makes one when it opens a session. */
void createInstance (benchmark::State& benchState)
{
    for (auto _ : benchState)
    {
        Processor processor;
        benchmark::DoNotOptimize (&processor);
    }
}

/** The host's save of a session with eight full patterns. */
void saveState (benchmark::State& benchState)
{
    Processor processor;
    fillPatterns (processor.getState().sequencer);
    juce::MemoryBlock blob;
    for (auto _ : benchState)
    {
        blob.reset();
        processor.getStateInformation (blob);
        benchmark::DoNotOptimize (blob.getData());
    }
    benchState.counters["bytes"] = static_cast<double> (blob.getSize());
}

/** The host's restore of that session, on the message thread, where it
    loads at once and ends with the rebuild. */
void loadState (benchmark::State& benchState)
{
    juce::MemoryBlock blob;
    {
        Processor source;
        fillPatterns (source.getState().sequencer);
        source.getStateInformation (blob);
    }
    Processor processor;
    for (auto _ : benchState)
        processor.setStateInformation (blob.getData(), static_cast<int> (blob.getSize()));
    benchState.counters["bytes"] = static_cast<double> (blob.getSize());
}

/** What every edit in the piano roll costs: all eight patterns evaluated,
    bent by swing and published to the audio thread. */
void rebuildEightPatterns (benchmark::State& benchState)
{
    LivePatterns live;
    fillPatterns (live);
    for (auto _ : benchState)
        live.rebuild();
    benchState.SetItemsProcessed (benchState.iterations() * LivePatterns::numPatterns * stepsPerPattern);
}
} // namespace

BENCHMARK (createInstance)->Unit (benchmark::kMillisecond);
BENCHMARK (saveState)->Unit (benchmark::kMicrosecond);
BENCHMARK (loadState)->Unit (benchmark::kMicrosecond);
BENCHMARK (rebuildEightPatterns)->Unit (benchmark::kMicrosecond);
