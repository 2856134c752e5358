#include "sequencer/modifiers/StepPulseSequencer.h"

#include "persistence/ChildContainerSerializer.h"
#include "persistence/ReflectMembers.h"

#include <algorithm>
#include <cmath>

namespace Orv::Sequencer::Modifiers
{
StepPulseSequencer::StepPulseSequencer()
{
    Step first;
    first.time = { 0.0, length };
    steps.push_back (first);
}

StepPulseSequencer::StepPulseSequencer (const StepPulseSequencer& other) = default;

StepPulseSequencer& StepPulseSequencer::operator= (const StepPulseSequencer& other) = default;

void StepPulseSequencer::evaluate (PatternData& result) const
{
    const auto patternLength = getLength();
    result.start = 0.0;
    result.length = patternLength;

    if (steps.empty())
        return;

    for (const auto& step : steps)
    {
        if (! step.enabled)
            continue;

        auto note = step;
        note.time = { step.time.start * patternLength, step.time.length * patternLength };
        result.notes.push_back (note);
    }

    result.heads.push_back ({ { 0.0, patternLength }, playHead.get(), true });
}

void StepPulseSequencer::reflectMembers (Reflector& reflector)
{
    Duration::reflectIn (reflector, duration);
    addMember (reflector, "length", length);
    // Steps are not validated here: the owner of a live pattern filters them.
    ChildContainerSerializer<Steps> (steps, "Steps", "Step", true).add (reflector);
    addMember (reflector, "grid", grid);

    if (reflector.isLoading())
        broadcaster.call();
}

bool StepPulseSequencer::removeNotesAt (Ranges::Span<double> span, std::int32_t noteNum)
{
    const auto sizeBefore = steps.size();
    const auto spanEnd = span.getEnd();

    steps.erase (std::remove_if (steps.begin(), steps.end(),
                                 [&] (const Step& s) {
                                     return s.event.noteNum == noteNum && s.time.start < spanEnd && span.start < s.getEnd();
                                 }),
                 steps.end());

    if (steps.size() == sizeBefore)
        return false;

    broadcaster.call();
    return true;
}

namespace
{
    // When the front of cut begins inside keep, cut loses that front: it starts
    // where keep ends, or is reduced to nothing if it lies wholly inside.
    void cutFrontIfInside (const Step& keep, Step& cut)
    {
        if (keep.time.start <= cut.time.start && keep.getEnd() > cut.time.start)
        {
            const auto cutEnd = cut.getEnd();
            const auto keepEnd = keep.getEnd();
            cut.time.start = std::min (cutEnd, keepEnd);
            cut.time.length = std::max (0.0, cutEnd - keepEnd);
        }
    }
} // namespace

void StepPulseSequencer::clearOverlaps (Steps& steps)
{
    for (size_t i = 0; i < steps.size(); ++i)
    {
        for (size_t j = i + 1; j < steps.size(); ++j)
        {
            auto& a = steps[i];
            auto& b = steps[j];

            if (a.event.noteNum != b.event.noteNum)
                continue;

            cutFrontIfInside (a, b);
            cutFrontIfInside (b, a);
        }
    }

    steps.erase (std::remove_if (steps.begin(), steps.end(), [] (const Step& s) { return s.time.length < minStepLength; }),
                 steps.end());
}

void StepPulseSequencer::quantizeStep (int grid, Step& step, bool quantizeStart, bool quantizeLength)
{
    const auto cells = static_cast<double> (grid);
    const auto cell = 1.0 / cells;
    const auto roundToGrid = [cells] (double x) { return std::round (x * cells) / cells; };
    // A start on the pattern's end would wrap round to its beginning.
    const auto roundStart = [&] (double x) { return std::max (0.0, std::min (roundToGrid (x), 1.0 - cell)); };

    if (! quantizeLength)
    {
        step.time.start = roundStart (step.time.start);
        return;
    }

    const auto start = roundStart (step.time.start);
    auto end = roundToGrid (step.time.start + step.time.length);

    if (start >= end)
        end = start + cell;

    if (end - start <= 0.0)
        end = cell;

    if (quantizeStart)
    {
        step.time.start = start;
        step.time.length = std::max (end, start) - start;
    }
    else
    {
        step.time.length = std::max (0.0, std::max (end, start) - step.time.start);
    }
}
} // namespace Orv::Sequencer::Modifiers
