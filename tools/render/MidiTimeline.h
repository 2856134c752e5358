#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <vector>

namespace Orv::Tools::Render
{
/** One MIDI event at a sample of the whole render. */
struct TimedMessage
{
    juce::MidiMessage message;
    juce::int64 sample = 0;
};

/** A note from its start to its end, in samples of the render. */
struct NoteSpan
{
    int note = 0;
    int velocity = 0;
    juce::int64 start = 0;
    juce::int64 end = 0;
};

/** The render's musical time: a fixed tempo in 4/4 from sample 0. Turns MIDI
    files into timed events and back. */
class MidiTimeline
{
public:
    static constexpr int ticksPerQuarter = 960;
    static constexpr int quartersPerBar = 4;

    MidiTimeline (double bpm, double sampleRate, juce::int64 totalSamples);

    juce::int64 sampleOfQuarter (double quarter) const;
    double quarterOfSample (juce::int64 sample) const;
    juce::int64 getTotalSamples() const noexcept { return totalSamples; }
    double getSamplesPerBar() const noexcept { return samplesPerQuarter * quartersPerBar; }

    /** The notes and controllers of a MIDI file as host input, in time order,
        those that fall within the render. A file in beats is laid on the
        render's tempo, one in SMPTE time by its seconds. Throws RenderError
        when the file cannot be read or is no MIDI file. */
    std::vector<TimedMessage> readInput (const juce::File& file) const;

    /** The notes a built-in clip holds during the render: as the file player
        plays it, looped by its length in whole bars of 4/4 from sample 0 and
        transposed by `semitones`. Empty when the bytes are no MIDI file. */
    std::vector<NoteSpan> clipNotes (const void* data, size_t size, int semitones) const;

    /** Note-ons matched with their note-offs; a note still on at the end of
        the render ends there. */
    std::vector<NoteSpan> spansOf (const std::vector<TimedMessage>& events) const;

    /** Writes the channel messages as a type 1 MIDI file: a first track with
        the tempo and the time signature, a second with the notes. Throws
        RenderError when the file cannot be written. */
    void write (const std::vector<TimedMessage>& events, const juce::File& file) const;

private:
    double bpm;
    double sampleRate;
    double samplesPerQuarter;
    juce::int64 totalSamples;
};
} // namespace Orv::Tools::Render
