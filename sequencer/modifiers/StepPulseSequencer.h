#pragma once

#include "sequencer/OwnPlayHead.h"
#include "sequencer/modifiers/Base.h"
#include "sequencer/modifiers/Duration.h"

namespace Orv::Sequencer::Modifiers
{
/** The step sequence that the user edits. A step's start and length are
    fractions of the pattern, so a change of length stretches every step.
    The order of the steps is the order of their making; clearOverlaps and
    the editor's selection depend on it.

    Message thread only. */
class StepPulseSequencer : public Cloneable<Base, StepPulseSequencer>
{
public:
    static constexpr double defaultGate = 0.98;
    /** Steps shorter than this after clearOverlaps are dropped. */
    static constexpr double minStepLength = 0.001;

    /** One step at 0, disabled, with the default gate as its length. */
    StepPulseSequencer();

    /** A new play head; all else copied. */
    StepPulseSequencer (const StepPulseSequencer& other);
    StepPulseSequencer& operator= (const StepPulseSequencer& other);

    /** The enabled steps in quarter notes, in list order and unclipped, and
        one head over the whole length. With no steps at all, no head. */
    void evaluate (PatternData& result) const override;

    /** "Duration" (or an old file's "duration"), "length", "Steps", "grid";
        tells the broadcaster after a read. */
    void reflectMembers (Reflector& reflector) override;

    /** The pattern's length in quarter notes. */
    double getLength() const noexcept { return duration.getLength(); }

    /** Removes the steps of a row that overlap the span. Tells the
        broadcaster, and returns true, only when the list shrank. */
    bool removeNotesAt (Ranges::Span<double> span, std::int32_t noteNum);

    /** Cuts steps of one row where they overlap, in list order: a later step
        that begins inside an earlier one loses its front, then an earlier
        one that begins inside the later one loses its front. Steps left
        shorter than minStepLength are removed. Tells nobody. */
    static void clearOverlaps (Steps& steps);

    /** Moves a step onto a grid of the given number of cells: its start, or
        its end with the start kept, or both. A start never lands on the
        pattern's end. With neither flag the start is moved anyway. */
    static void quantizeStep (int grid, Step& step, bool quantizeStart, bool quantizeLength);

    Duration duration;
    /** The gate of a fresh step as a fraction of its cell; only the
        constructor uses it, but it is stored and restored. */
    double length = defaultGate;
    /** The number of steps the pattern is divided into. */
    std::int32_t grid = 1;
    Steps steps;
    OwnPlayHead playHead;
};
} // namespace Orv::Sequencer::Modifiers
