#pragma once

#include "synth/Smoother.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <cmath>
#include <vector>

namespace Orv::Audio::Filters
{
/** A stereo echo with a feedback loop and a linearly interpolated line, fully
    wet: what comes out is the delayed signal alone, the dry path is the
    owner's business.

    Time and feedback glide over a tenth of a second; while either glides the
    block is run one sample at a time so the read point moves smoothly, which
    is what bends the pitch like tape on a time change. At rest a block is one
    run. Subclasses decide what sits in the loop.

    Audio thread after prepare; the line is allocated in prepare only. */
class FeedbackDelay
{
public:
    /** What prepare needs to know about the stream. */
    struct Spec
    {
        double sampleRate = 0.0;
        int numChannels = 0;
    };

    /** The line in the form of an interpolating delay line: positions run
        downwards, so a sample written at writePos is read delay samples
        later at readPos + delay. */
    struct Line
    {
        juce::AudioBuffer<float> buffer;
        std::vector<int> writePos;
        std::vector<int> readPos;
        float delay = 0.0f;
        float delayFrac = 0.0f;
        int delayInt = 0;
        int totalSize = 0;
    };

    /** The longest delay in samples; the line holds two more so that the
        interpolation's second point never meets the write point. */
    static constexpr int maximumDelaySamples = 1000000;
    static constexpr int lineSize = maximumDelaySamples + 2;
    static constexpr double rampSeconds = 0.1;

    FeedbackDelay() = default;
    virtual ~FeedbackDelay() = default;

    FeedbackDelay (const FeedbackDelay&) = delete;
    FeedbackDelay& operator= (const FeedbackDelay&) = delete;

    /** Audio thread; never blocks. Replaces the first channels (as many as
        prepared) of the block by their echo; any channel beyond those has no
        line and is cleared. */
    virtual void process (juce::AudioBuffer<float>& block) noexcept = 0;

    /** Owner's thread with the audio stopped: allocates and clears the line,
        sets the positions to 0 and lands both ramps on their targets. */
    virtual void prepare (const Spec& spec);

    /** Audio thread; never blocks. New targets for the time in seconds and
        the feedback gain; both glide there. */
    void setParameters (float seconds, float feedback) noexcept;

    /** Any thread that owns the delay: channels with a line. */
    int getNumChannels() const noexcept { return (int) lastOut.size(); }

    float sampleRate = 0.0f;
    /** The feedback sample of each channel, already scaled. */
    std::vector<float> lastOut;
    /** In samples. */
    Smoother timeSmoother { rampSeconds };
    Smoother feedbackSmoother { rampSeconds };
    Line line;

protected:
    /** Runs the block through the loop with filterSample (channel, x) in it.
        A template so that the filter inlines into the per-sample loop. */
    template <typename FilterSample>
    void processWith (juce::AudioBuffer<float>& block, FilterSample&& filterSample) noexcept
    {
        const auto numSamples = block.getNumSamples();
        const auto numChannels = juce::jmin (block.getNumChannels(), getNumChannels());

        for (int c = numChannels; c < block.getNumChannels(); ++c)
            block.clear (c, 0, numSamples);

        for (int start = 0; start < numSamples;)
        {
            const auto gliding = timeSmoother.isSmoothing() || feedbackSmoother.isSmoothing();
            const auto length = gliding ? 1 : numSamples - start;
            run (block, numChannels, start, length, filterSample);
            start += length;
        }
    }

private:
    template <typename FilterSample>
    void run (juce::AudioBuffer<float>& block, int numChannels, int start, int length,
              FilterSample& filterSample) noexcept
    {
        const auto d = timeSmoother.getNextValue();
        const auto fb = feedbackSmoother.getNextValue();

        // A negative (or NaN) time keeps the last good one rather than
        // reading outside the line.
        if (d >= 0.0f)
        {
            line.delay = juce::jmin ((float) (line.totalSize - 2), d);
            line.delayInt = (int) std::floor (line.delay);
            line.delayFrac = line.delay - (float) line.delayInt;
        }

        const auto size = line.totalSize;
        const auto delayInt = line.delayInt;
        const auto delayFrac = line.delayFrac;

        for (int c = 0; c < numChannels; ++c)
        {
            auto* x = block.getWritePointer (c, start);
            auto* data = line.buffer.getWritePointer (c);
            auto writePos = line.writePos[(size_t) c];
            auto readPos = line.readPos[(size_t) c];
            auto last = lastOut[(size_t) c];

            for (int i = 0; i < length; ++i)
            {
                const auto y = filterSample (c, x[i] + last);

                // The feedback goes around the filter as well as through it,
                // so low frequencies return at twice the feedback gain (0.8 at
                // the most, which still decays).
                data[writePos] = y + last;
                writePos = writePos == 0 ? size - 1 : writePos - 1;

                auto i1 = delayInt + readPos;
                auto i2 = i1 + 1;
                if (i2 >= size)
                {
                    i1 %= size;
                    i2 %= size;
                }

                const auto out = data[i1] + delayFrac * (data[i2] - data[i1]);
                readPos = readPos == 0 ? size - 1 : readPos - 1;
                last = out * fb;
                x[i] = out;
            }

            line.writePos[(size_t) c] = writePos;
            line.readPos[(size_t) c] = readPos;
            lastOut[(size_t) c] = last;
        }
    }
};
} // namespace Orv::Audio::Filters
