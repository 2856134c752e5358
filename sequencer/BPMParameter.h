#pragma once

#include "parameters/DefaultAtomic.h"

#include <atomic>

namespace Orv::Sequencer
{
/** The tempo of the internal clock in beats per minute, over an atomic float
    that the GUI writes and the audio thread reads without a lock. Its control
    is skewed so that its middle sits at 150; its text is the whole number of
    beats, so stored fractions do not show. */
class BPMParameter : public Parameters::DefaultAtomic
{
public:
    static constexpr float minimum = 1.0f;
    static constexpr float maximum = 999.0f;
    static constexpr float interval = 0.0001f;
    static constexpr float skew = 0.36446768045425415f;
    /** 100 beats per minute, kept as the control's position. */
    static constexpr float defaultNormalised = 0.43078282475471497f;

    /** Message thread: starts at the default. */
    BPMParameter();

    /** Any thread: the tempo as the audio thread reads it. */
    std::atomic<float>& getAtomic() noexcept { return value; }

    /** Any thread: the position of the tempo on the skewed control. */
    float getNormalised() const override;

    /** Any thread: converts through the range and stores; nobody is told. */
    void setNormalised (float normalised) override;
    void setNormalisedNotifying (float normalised) override;

    /** Any thread: stores a tempo in beats per minute, limited to the range. */
    void setFloat (float bpm) override;

    /** Any thread: the tempo in beats per minute. */
    float getFloat() const override;

    /** Message thread: parses a number, snaps it to the interval counted from
        the minimum, and limits it to the range. Text that is no number reads
        as 0 and so as the minimum. */
    void setFromText (const juce::String& text) override;

    /** Message thread: the tempo cut to a whole number, e.g. "120". */
    juce::String getText() const override;

    /** Message thread: the text of the tempo at a control position. */
    juce::String getTextFor (float normalised) const override;

    juce::String getName() const override;
    float getDefaultNormalised() const override { return defaultNormalised; }

    /** Any thread: the snapped, limited tempo that a text entry of x gives. */
    static float snapTyped (double x) noexcept;

private:
    static juce::NormalisableRange<float> makeRange();
    static juce::String textOf (float bpm);

    std::atomic<float> value;
};
} // namespace Orv::Sequencer
