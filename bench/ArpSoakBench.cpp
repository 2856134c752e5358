#include "sequencer/ArpSoak.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

// The unit test's random play, over many more seeds than a test run can
// afford: a soak for the rule that no note is struck while it sounds and that
// a stop ends every note, timed as it goes. HALVANE_ARP_SEEDS sets the number
// of seeds, HALVANE_ARP_SEED replays one.
namespace
{
constexpr int defaultSeeds = 2000;

/** While it lives, the process's home is a fresh folder holding the
    developer's folder on the desktop, as each unit test process's home does:
    instances then start from their plain defaults rather than the factory's
    default preset and sound, and so play exactly the unit test's scenario.
    The home from before comes back afterwards, for the other benchmarks. */
class PlainDefaultsHome
{
public:
    PlainDefaultsHome()
    {
        if (const auto* before = std::getenv ("HOME"))
            previous = before;
        home.getChildFile ("Desktop").getChildFile ("TrevalisDev").getChildFile ("Presets").createDirectory();
        setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);
    }

    ~PlainDefaultsHome()
    {
        if (previous.has_value())
            setenv ("HOME", previous->c_str(), 1);
        else
            unsetenv ("HOME");
        home.deleteRecursively();
    }

    PlainDefaultsHome (const PlainDefaultsHome&) = delete;
    PlainDefaultsHome& operator= (const PlainDefaultsHome&) = delete;

private:
    std::optional<std::string> previous;
    juce::File home { juce::File::createTempFile ("halvane-soak-home") };
};

/** Every seed once per iteration; the first seed that breaks the rule fails
    the benchmark with its replay line. Reports seeds per second, and the
    audio played (stopped blocks included) as a multiple of real time. */
void arpSoak (benchmark::State& benchState)
{
    using Orv::Testing::ArpRig;
    const PlainDefaultsHome home;
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
