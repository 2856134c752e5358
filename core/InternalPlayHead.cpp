#include "core/InternalPlayHead.h"

#include <algorithm>
#include <cmath>

namespace Orv::Audio
{
namespace
{
/** The host's loop as far as it applies: only with both the loop points and
    the looping flag present, and only when it has a length. */
struct ActiveLoop
{
    ActiveLoop (const juce::AudioPlayHead::PositionInfo& info, double blockStartPpq)
    {
        if (const auto points = info.getLoopPoints(); points.hasValue() && info.getIsLooping())
        {
            start = points->ppqStart;
            end = points->ppqEnd;
            active = end > start;
            startsInside = blockStartPpq >= start && blockStartPpq <= end;
        }
    }

    /** A position within the loop, both ends included, folds back into it, so
        that the loop's end itself reads as its start. A block that starts
        inside the loop and runs past its end wraps too: most hosts do not
        split their blocks at the loop's end, and the samples after it belong
        to the loop's start, not to bars that never play. A block that starts
        beyond the end plays on unfolded, as a host does that was placed there. */
    double fold (double ppq) const noexcept
    {
        if (! active || ppq < start || (ppq > end && ! startsInside))
            return ppq;

        return start + std::fmod (ppq - start, end - start);
    }

    bool active = false;
    bool startsInside = false;
    double start = 0.0;
    double end = 0.0;
};
} // namespace

InternalPlayHead::InternalPlayHead()
{
    info.setBpm (defaultTempo);
    updatePpqPerSample();
}

void InternalPlayHead::prepare (double newSampleRate, int samplesPerBlock)
{
    jassert (newSampleRate > 0.0); // a rate of 0 would make every position infinite

    positions.reserve ((size_t) juce::jmax (0, samplesPerBlock));
    sampleRate = newSampleRate;
    updatePpqPerSample();
}

void InternalPlayHead::jumpTo (int64_t sampleTime) noexcept
{
    expectedTime = sampleTime;
    info.setTimeInSamples (sampleTime);
    forceJump = true;
}

void InternalPlayHead::update (juce::AudioPlayHead* host, int numSamples)
{
    if (host != nullptr)
    {
        // A host that gives no position leaves the last one in force, and with
        // it the last play state.
        if (const auto hostPosition = host->getPosition())
            info = *hostPosition;
    }
    else
    {
        info.setTimeInSamples (expectedTime);
    }

    // Also when the caller filled `info` itself, so that a tempo it set there
    // takes effect in this very block.
    updatePpqPerSample();

    const bool playing = info.getIsPlaying();
    stateChanged = wasPlaying != playing;

    const auto time = info.getTimeInSamples().orFallback (0);

    if (forceJump)
        jumped = true;
    else if (playing)
        jumped = time >= expectedTime + jumpToleranceSamples
              || time < expectedTime - jumpToleranceSamples;
    else
        jumped = time != expectedTime;

    forceJump = false;

    positions.resize ((size_t) juce::jmax (0, numSamples));

    const auto startPpq = info.getPpqPosition().orFallback (0.0);

    const ActiveLoop loop (info, startPpq);

    if (playing)
    {
        for (size_t i = 0; i < positions.size(); ++i)
            positions[i] = loop.fold (startPpq + (double) i * ppqPerSample);

        // `info` runs ahead to the next block's start, so that a clock driven
        // without a host continues from exactly there.
        expectedTime = time + (int64_t) positions.size();
        info.setTimeInSamples (expectedTime);
    }
    else
    {
        expectedTime = time;
        std::fill (positions.begin(), positions.end(), startPpq);
    }

    wasPlaying = playing;
    blockStartPpq = startPpq;

    if (! playing)
    {
        blockEndPpq = blockStartPpq;
        return;
    }

    blockEndPpq = loop.fold (blockStartPpq + (double) positions.size() * ppqPerSample);
    info.setPpqPosition (blockEndPpq);
}

void InternalPlayHead::updatePpqPerSample() noexcept
{
    ppqPerSample = info.getBpm().orFallback (defaultTempo) / (sampleRate * secondsPerMinute);
}
} // namespace Orv::Audio
