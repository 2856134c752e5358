#include "sequencer/modifiers/Clip.h"
#include "sequencer/modifiers/ModRef.h"
#include "sequencer/modifiers/StepPulseSequencer.h"

#include <benchmark/benchmark.h>

#include <array>

namespace
{
using namespace Orv::Sequencer;
using namespace Orv::Sequencer::Modifiers;

constexpr int numPatterns = 8;
constexpr int stepsPerPattern = 64;
constexpr int rowsInUse = 11;
constexpr int firstRow = 59;
constexpr double patternLength = 4.0;

/** The eight patterns as the live slots reach them: a Clip over a ModRef to
    each StepPulseSequencer. Every iteration evaluates all eight, as one
    rebuild does, into fresh results. Reported as time per rebuild. */
void evaluateEightPatterns (benchmark::State& state)
{
    std::array<StepPulseSequencer, numPatterns> sequences;
    std::array<Clip, numPatterns> clips;

    for (int p = 0; p < numPatterns; ++p)
    {
        auto& seq = sequences[(size_t) p];
        seq.duration.duration = patternLength;
        seq.grid = stepsPerPattern;
        seq.steps.clear();

        for (int i = 0; i < stepsPerPattern; ++i)
        {
            Step step;
            step.time = { static_cast<double> (i) / stepsPerPattern, 0.98 / stepsPerPattern };
            step.event.noteNum = firstRow + (i * (p + 1)) % rowsInUse;
            step.enabled = (i + p) % 5 != 0; // some disabled steps, as drawn patterns have
            seq.steps.push_back (step);
        }

        clips[(size_t) p].mod.set (std::make_unique<ModRef> (&seq));
    }

    for (auto _ : state)
    {
        for (const auto& clip : clips)
        {
            PatternData result;
            clip.evaluate (result);
            benchmark::DoNotOptimize (result.notes.data());
        }
    }

    state.SetItemsProcessed (state.iterations() * numPatterns * stepsPerPattern);
}
} // namespace

BENCHMARK (evaluateEightPatterns)->Unit (benchmark::kMicrosecond);
