#pragma once

#include "core/InternalPlayHead.h"

namespace Orv::Audio
{
/** A window on a span of the block's clock, handed down to the stages that
    work on part of a block. It owns nothing and allocates nothing: make one on
    the stack for each span, and let it go with the block.

    Jumps and play/stop changes belong to the block's first sample, so only a
    span that starts there reports them. Audio thread only. */
class PlayHeadTransportView : public juce::AudioPlayHead
{
public:
    /** Audio thread: a view on samples `start` up to `start + count` of the
        block that `playHead` last computed. */
    PlayHeadTransportView (const InternalPlayHead& playHead, int start, int count) noexcept;

    /** Audio thread: the clock's record, with the ppq position of the span's
        first sample, the tempo (or the default one), the sample time moved by
        the span's start, and those three marked present; all else is the
        block's. */
    juce::Optional<PositionInfo> getPosition() const override;

    //==============================================================================
    /** Audio thread: a view on `subCount` samples from `offset` within this
        span; the flags survive only if it still starts at the block's start. */
    PlayHeadTransportView subView (int offset, int subCount) const noexcept
    {
        return { *playHead, start + offset, subCount };
    }

    /** Audio thread: the position of sample `index` of the span (0 is the
        span's first sample). */
    double getPpqAt (int index) const noexcept;

    /** Audio thread: true if the span starts the block and the block jumped. */
    bool hasJumped() const noexcept { return jumped; }
    /** Audio thread: true if the span starts the block and the play state
        changed with it. */
    bool hasPlayStateChanged() const noexcept { return stateChanged; }
    /** Audio thread: the block's play state. */
    bool isPlaying() const noexcept { return playHead->isPlaying(); }

    /** Audio thread: the block's clock. */
    const InternalPlayHead& getPlayHead() const noexcept { return *playHead; }
    /** Audio thread: first sample of the span within the block. */
    int getStart() const noexcept { return start; }
    /** Audio thread: number of samples in the span. */
    int getCount() const noexcept { return count; }

private:
    bool stateChanged = false;
    bool jumped = false;
    const InternalPlayHead* playHead = nullptr;
    int32_t start = 0;
    int32_t count = 0;
};
} // namespace Orv::Audio
