#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <atomic>

namespace Orv::Audio
{
/** A voice of MPESynth. The synth keeps its voices by value, so everything a
    voice needs is sized in prepare() and rendering allocates nothing.

    Every function but prepare() runs on the audio thread, called by the synth
    while it holds its note state; prepare() runs with the audio stopped. */
class MPESynthVoice : public juce::MPESynthesiserVoice
{
public:
    MPESynthVoice() = default;
    ~MPESynthVoice() override = default;

    /** Busy while it holds a note: a voice whose note was cleared is free,
        even if its sound still runs. */
    bool isActive() const override;

    void noteStarted() override;
    void noteStopped (bool allowTailOff) override;
    void notePressureChanged() override {}
    void notePitchbendChanged() override {}
    void noteTimbreChanged() override {}
    void noteKeyStateChanged() override {}

    void renderNextBlock (juce::AudioBuffer<double>&, int, int) override {}

    /** Renders samples [start, start + numSamples) of buffer in place, by
        an alias of that range, and publishes whether the voice is still
        busy. */
    void renderNextBlock (juce::AudioBuffer<float>& buffer, int startSample, int numSamples) override;

    void setCurrentSampleRate (double newRate) override;

    /** The block as the voice sees it: its own samples from 0. */
    virtual void processBlock (juce::AudioBuffer<float>& block);

    /** Writes the voice's sound into block. */
    virtual void renderVoice (juce::AudioBuffer<float>& block) = 0;

    /** With the audio stopped: sizes the voice for blocks of up to maxBlockSize. */
    virtual void prepare (int numChannels, double sampleRate, int maxBlockSize) {}

    /** Whether the note is let go as soon as the sound has died away. */
    virtual bool clearWhenDone() const { return true; }

    virtual void onNoteStarted() {}
    virtual void onNoteStopped() {}
    virtual bool shouldApplyEnvelope() const { return true; }

    /** Any thread: whether the voice was busy at the end of its last render. */
    bool wasActiveAfterLastRender() const noexcept { return active.load (std::memory_order_relaxed); }

    /** The synth writes the note it hands over, or the note's new values. */
    void setNote (const juce::MPENote& note) noexcept { currentlyPlayingNote = note; }

protected:
    /** Frees the voice: the note's ids become 0, its 14-bit values centred,
        its velocities 0 and its key off. */
    void clearNote() noexcept { clearCurrentNote(); }

    std::atomic<bool> active { false };
};
} // namespace Orv::Audio
