#include "synth/SampleList.h"

#include <benchmark/benchmark.h>

namespace
{
/** Building every wavetable, as the first plug-in instance in a process does
    on the message thread: reading the embedded files, resampling each to ten
    times a 192 kHz file's rate and levelling. Reports the tables and the
    bytes they hold. */
void buildWavetables (benchmark::State& benchState)
{
    using Orv::Audio::WavetableSynth::SampleList;

    double bytes = 0.0;
    double tables = 0.0;
    for (auto _ : benchState)
    {
        const auto list = SampleList::build();
        benchmark::DoNotOptimize (list.data());

        bytes = 0.0;
        for (const auto& entry : list)
            bytes += static_cast<double> (entry.samples.getNumChannels()) * entry.samples.getNumSamples() * sizeof (float);
        tables = static_cast<double> (list.size());
    }

    benchState.counters["bytes"] = benchmark::Counter (bytes, benchmark::Counter::kDefaults, benchmark::Counter::kIs1024);
    benchState.counters["tables"] = tables;
}
} // namespace

BENCHMARK (buildWavetables)->Unit (benchmark::kMillisecond);
