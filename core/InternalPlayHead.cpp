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
    explicit ActiveLoop (const juce::AudioPlayHead::PositionInfo& info)
    {
        if (const auto points = info.getLoopPoints(); points.hasValue() && info.getIsLooping())
        {
            start = points->ppqStart;
            end = points->ppqEnd;
            active = end > start;
        }
    }

    /** A position within the loop, both ends included, folds back into it, so
        that the loop's end itself reads as its start. Beyond the end nothing
        changes: the host jumps back at its next block. */
    double fold (double ppq) const noexcept
    {
        if (! active || ppq < start || ppq > end)
            return ppq;

        return start + std::fmod (ppq - start, end - start);
    }

    bool active = false;
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

    const ActiveLoop loop (info);

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
