#pragma once

#include "core/InternalPlayHead.h"
#include "core/PlayHeadTransportView.h"
#include "sequencer/NoteScheduler.h"
#include "sequencer/PatternData.h"
#include "sequencer/RunnerSlot.h"
#include "sequencer/TriggerRecord.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <cstdint>
#include <vector>

namespace Orv::Sequencer
{
/** Plays one evaluated pattern against the block's clock. Pattern time is
    the block's quarter-note position less an origin, folded into the slot's
    length when it loops; a run is cut into pieces at each wrap so that the
    scheduler only ever sees time that goes forward.

    Stopping, or a slot that isn't playing, plays an empty pattern, and the
    scheduler's sweep ends whatever sounded.

    Built on the message thread (it reserves); after that audio thread only. */
class PatternRunner
{
public:
    /** What the next run does with the origin. */
    enum class Phase : int64_t
    {
        running = 0,
        building = 1,
        /** The next run takes `nextOrigin` as its origin. */
        restart = 2
    };

    static constexpr size_t reservedTriggers = 100;
    /** Samples per run that need no allocation until `prepare` says more. */
    static constexpr int initialBlockSize = 4096;

    /** Message thread: reserves the clock, the triggers and the scheduler. */
    PatternRunner();

    /** Prepare time, never during a block: makes room for runs of up to
        `samplesPerBlock` samples (allocates). */
    void prepare (int samplesPerBlock);

    //==============================================================================
    /** Audio thread; never blocks. Plays the view's samples of the slot into
        the output, at positions within the view, and collects the pulses
        that fired, sorted by sample. A view with the jump flag puts the
        origin back to 0. */
    void run (const Audio::PlayHeadTransportView& view, const RunnerSlot& slot);

    /** Audio thread: the next run restarts the pattern, with pattern time 0
        at quarter-note position `origin`. */
    void restartAt (double origin) noexcept
    {
        nextOrigin = origin;
        phase = Phase::restart;
    }

    /** Audio thread: the last run's notes, at positions within its view. */
    const juce::MidiBuffer& getOutput() const noexcept { return outMidi; }
    /** Audio thread: the last run's pulses, ascending by sample. */
    const std::vector<TriggerRecord>& getTriggers() const noexcept { return triggers; }

    /** Audio thread: the quarter-note position that counts as pattern time 0. */
    double getOrigin() const noexcept { return origin; }
    Phase getPhase() const noexcept { return phase; }

    /** Audio thread: the runner's clock; its positions hold the last run's
        pattern times. */
    const Audio::InternalPlayHead& getClock() const noexcept { return clock; }

    /** Any thread that owns the runner: the note logic, e.g. to seed its
        generator for a repeatable run. */
    NoteScheduler& getScheduler() noexcept { return scheduler; }

private:
    void runPiece (const PatternData& data, int start, int numSamples);

    Phase phase = Phase::building;
    double nextOrigin = 0.0;
    double origin = 0.0;
    PatternData emptyData;
    juce::MidiBuffer outMidi;
    std::vector<TriggerRecord> triggers;
    Audio::InternalPlayHead clock;
    NoteScheduler scheduler;
};
} // namespace Orv::Sequencer
