#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <cstdint>
#include <vector>

namespace Orv::Audio
{
/** The block's clock: one quarter-note position for every sample of the block,
    folded at the host's loop, with jumps and play/stop changes noticed.

    The sequencer never works from the host's single position per block; it
    reads `getPositions()`. After an update, `getInfo()` already describes the
    start of the next block (sample time and ppq position run ahead), so a
    clock that is driven by the plug-in itself simply continues from there.

    Everything here belongs to the audio thread, except `prepare`, which runs
    from the host's prepare call while no block is being processed. */
class InternalPlayHead : public juce::AudioPlayHead
{
public:
    /** Tempo assumed wherever neither host nor caller gives one. */
    static constexpr double defaultTempo = 100.0;
    /** A host may be this many samples off either way without that counting
        as a jump while playing; hosts round their block starts differently. */
    static constexpr int64_t jumpToleranceSamples = 30;
    /** Rate used until `prepare` says otherwise, so that an unprepared clock
        still yields finite positions. */
    static constexpr double defaultSampleRate = 44100.0;
    static constexpr double secondsPerMinute = 60.0;

    InternalPlayHead();

    //==============================================================================
    /** Prepare time, never during a block: reserves the per-sample positions
        for `samplesPerBlock` (allocates) and stores the rate. */
    void prepare (double newSampleRate, int samplesPerBlock);

    /** Audio thread; never blocks. Advances the clock by one block of
        `numSamples`. With a host, its position replaces `info` (or `info`
        stays as it was when the host gives none); with a null host the caller
        has filled `info` beforehand and the sample time continues from the
        last block. Allocates only when `numSamples` exceeds every block so far
        and the prepared size. */
    void update (juce::AudioPlayHead* host, int numSamples);

    /** Audio thread: `info` as it stands, always with a value. */
    juce::Optional<PositionInfo> getPosition() const override { return info; }

    //==============================================================================
    /** Audio thread: the record the next `update (nullptr, n)` starts from.
        A caller that runs the clock itself sets tempo, play state and ppq
        position here first. */
    PositionInfo& getInfo() noexcept { return info; }
    /** Audio thread: the latest position record. */
    const PositionInfo& getInfo() const noexcept { return info; }

    /** Audio thread: makes the next update report a jump whatever the
        positions say. */
    void requestJump() noexcept { forceJump = true; }

    /** Audio thread: moves the clock to `sampleTime`, which the next
        `update (nullptr, n)` then starts from, and requests a jump. Used when
        the plug-in's own transport is relocated. */
    void jumpTo (int64_t sampleTime) noexcept;

    /** Audio thread: one position per sample of the last block (or, for a
        clock that is never updated, whatever its owner wrote there). */
    const std::vector<double>& getPositions() const noexcept { return positions; }
    /** Audio thread: writable positions, for an owner that fills them with
        its own time instead of calling `update`; resize within the prepared
        size to stay free of allocation. */
    std::vector<double>& getPositions() noexcept { return positions; }

    /** Audio thread: true if the last block didn't start where the one before
        it led to, or a jump was requested. */
    bool hasJumped() const noexcept { return jumped; }
    /** Audio thread: true if the last block's play state differs from the
        block's before it. */
    bool hasPlayStateChanged() const noexcept { return stateChanged; }
    /** Audio thread: the play state of the last block. */
    bool isPlaying() const noexcept { return wasPlaying; }

    /** Audio thread: position at the first sample of the last block. */
    double getBlockStartPpq() const noexcept { return blockStartPpq; }
    /** Audio thread: position after the last sample of the last block. */
    double getBlockEndPpq() const noexcept { return blockEndPpq; }

    /** Audio thread: quarter notes per sample at the current tempo. */
    double getPpqPerSample() const noexcept { return ppqPerSample; }
    /** Audio thread: the rate given to `prepare`. */
    double getSampleRate() const noexcept { return sampleRate; }
    /** Audio thread: the sample time the next block should start at. */
    int64_t getExpectedTime() const noexcept { return expectedTime; }

private:
    void updatePpqPerSample() noexcept;

    bool jumped = false;
    bool stateChanged = false;
    bool wasPlaying = false;
    double blockStartPpq = 0.0;
    double blockEndPpq = 0.0;
    double sampleRate = defaultSampleRate;
    double ppqPerSample = 0.0;
    int64_t expectedTime = 0;
    bool forceJump = false;
    std::vector<double> positions;
    PositionInfo info;
};
} // namespace Orv::Audio
