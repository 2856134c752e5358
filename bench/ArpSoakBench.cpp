#include "sequencer/ArpSoak.h"

#include <benchmark/benchmark.h>

#include <cstdint>

// The unit test's random play, over many more seeds than a test run can
// afford: a soak for the rule that no note is struck while it sounds and that
// a stop ends every note, timed as it goes. HALVANE_ARP_SEEDS sets the number
// of seeds, HALVANE_ARP_SEED replays one.
namespace
{
constexpr int defaultSeeds = 2000;

/** Every seed once per iteration; the first seed that breaks the rule fails
    the benchmark with its replay line. Reports seeds per second, and the
    audio played (stopped blocks included) as a multiple of real time. */
void arpSoak (benchmark::State& benchState)
{
    using Orv::Testing::ArpRig;
    const auto seeds = Orv::Testing::ArpSoakSeeds::fromEnvironment (defaultSeeds);

    int64_t seedsPlayed = 0;
    int64_t blocks = 0;
    int64_t samples = 0;
    for (auto _ : benchState)
    {
        for (int seed = seeds.first; seed < seeds.first + seeds.count; ++seed)
        {
            const auto result = Orv::Testing::playArpSoak (seed);
            if (! result.holds())
            {
                benchState.SkipWithError (("the rule broke, replay with HALVANE_ARP_SEED: " + result.describe (seed)).c_str());
                return;
            }

            ++seedsPlayed;
            blocks += result.blocks;
            samples += result.samples;
        }
    }

    benchState.counters["seedsPerSecond"] = benchmark::Counter ((double) seedsPlayed, benchmark::Counter::kIsRate);
    benchState.counters["xRealTime"] = benchmark::Counter ((double) samples / ArpRig::sampleRate, benchmark::Counter::kIsRate);
    benchState.counters["blocksPerSeed"] = benchmark::Counter (seedsPlayed > 0 ? (double) blocks / (double) seedsPlayed : 0.0);
}
} // namespace

// One pass over the seeds is long enough to time: more would only repeat it.
BENCHMARK (arpSoak)->Iterations (1)->Unit (benchmark::kSecond);
