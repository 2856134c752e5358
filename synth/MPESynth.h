#pragma once

#include "synth/FixedNoteInstrument.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
#include <memory>

namespace Orv::Audio
{
namespace Detail
{
/** The synth's note tracking, held in a base of its own so that it is built
    before JUCE's synthesiser base, which takes a reference to it. */
struct NoteTrackingHolder
{
    NoteTrackingHolder (int pitchbendRange, juce::Range<int> channels) : noteTracking (pitchbendRange, channels) {}

    FixedNoteInstrument noteTracking;
};
} // namespace Detail

/** A polyphonic synthesiser on JUCE's MPE synthesiser base, its notes
    tracked in legacy mode (ordinary MIDI on channels 1 to 16, pitch bend of 2
    semitones) in fixed storage, its voices held by value in one array and its
    stealing rule as a type, so that nothing is allocated after prepare().

    Note timing: a block is split at each event into sub-blocks, but never
    into pieces shorter than 32 samples after the first split; an event closer
    than that to the last split takes effect at that split.

    Audio thread for rendering and the note callbacks (which the instrument
    makes from inside renderNextBlock); message thread with the audio stopped
    for construction and prepare(). */
template <typename Voice, typename Stealer>
class MPESynth : private Detail::NoteTrackingHolder, public juce::MPESynthesiserBase
{
public:
    static constexpr int defaultNumVoices = 64;
    static constexpr int subBlockGrain = 32;
    static constexpr int pitchbendRange = 2;
    static constexpr int numControllers = 128;

    /** Message thread: as many voices as "Voices.txt" on the desktop says,
        or 64 without one. */
    MPESynth() : MPESynth (readNumVoicesOverride()) {}

    /** Message thread: a synth of numberOfVoices voices; none for 0 or fewer. */
    explicit MPESynth (int numberOfVoices)
        : NoteTrackingHolder (pitchbendRange, juce::Range<int> (firstChannel, lastChannel + 1)),
          juce::MPESynthesiserBase (noteTracking),
          numVoices (juce::jmax (0, numberOfVoices)),
          voices (std::make_unique<Voice[]> ((size_t) numVoices)),
          stealList (std::make_unique<Voice*[]> ((size_t) numVoices))
    {
        // Only now is this object a listener that may be pointed at.
        noteTracking.setListener (this);
        setMinimumRenderingSubdivisionSize (subBlockGrain, false);
    }

    ~MPESynth() override = default;

    //==============================================================================
    /** Message thread with the audio stopped: sizes the mixing space and every
        voice, and tells them the rate. Notes that were on are let go. */
    virtual void prepare (int numChannels, double sampleRate, int maxBlockSize)
    {
        if (voiceBuffer.getNumChannels() != numChannels || voiceBuffer.getNumSamples() != maxBlockSize)
            voiceBuffer.setSize (numChannels, maxBlockSize);

        setCurrentPlaybackSampleRate (sampleRate);

        for (int i = 0; i < numVoices; ++i)
            voices[i].prepare (numChannels, sampleRate, maxBlockSize);
    }

    /** Audio thread: renders the whole buffer, which is overwritten, playing
        the events of midi at their positions as the class comment says. */
    virtual void renderNextBlock (juce::AudioBuffer<float>& buffer, const juce::MidiBuffer& midi)
    {
        juce::MPESynthesiserBase::renderNextBlock (buffer, midi, 0, buffer.getNumSamples());
    }

    /** Audio thread: whether any voice holds a note; when none does, the
        synth's output is silence and the block may skip it. */
    bool isAnyVoiceActive() const
    {
        for (int i = 0; i < numVoices; ++i)
            if (voices[i].isActive())
                return true;
        return false;
    }

    int getNumVoices() const noexcept { return numVoices; }

    /** The thread that renders, or a test between blocks. */
    Voice& getVoice (int index) noexcept { return voices[index]; }
    const Voice& getVoice (int index) const noexcept { return voices[index]; }

    /** Message thread: the number of voices that the desktop file asks for,
        or the default. */
    static int readNumVoicesOverride()
    {
        const auto file = juce::File::getSpecialLocation (juce::File::userDesktopDirectory).getChildFile ("Voices.txt");
        return file.existsAsFile() ? file.loadFileAsString().getIntValue() : defaultNumVoices;
    }

    //==============================================================================
    void noteAdded (juce::MPENote newNote) override
    {
        Voice* voice = nullptr;

        for (int i = 0; i < numVoices && voice == nullptr; ++i)
            if (! voices[i].isActive())
                voice = &voices[i];

        if (voice == nullptr)
        {
            if (! stealingEnabled)
                return;

            voice = Stealer::findVoiceToSteal (voices.get(), numVoices, stealList.get(), newNote);
            if (voice == nullptr)
                return;

            if (stopVoiceOnSteal)
                voice->noteStopped (false);
        }

        voice->setNote (newNote);
        voice->noteOnTime = lastNoteOnCounter++;
        voice->noteStarted();
    }

    void notePressureChanged (juce::MPENote note) override { copyToVoicesOf (note); }
    void noteTimbreChanged (juce::MPENote note) override { copyToVoicesOf (note); }
    void noteKeyStateChanged (juce::MPENote note) override { copyToVoicesOf (note); }

    /** In legacy mode every note shares its channel's bend, so a bend moves
        every sounding voice, tails included. */
    void notePitchbendChanged (juce::MPENote note) override
    {
        for (int i = 0; i < numVoices; ++i)
        {
            auto& voice = voices[i];
            if (! voice.isActive())
                continue;

            if (perNoteBend)
            {
                if (voice.getCurrentlyPlayingNote().noteID != note.noteID)
                    continue;
                voice.setNote (note);
            }
            else
            {
                auto bent = voice.getCurrentlyPlayingNote();
                bent.totalPitchbendInSemitones = note.totalPitchbendInSemitones;
                voice.setNote (bent);
            }
            voice.notePitchbendChanged();
        }
    }

    void noteReleased (juce::MPENote finishedNote) override
    {
        for (int i = numVoices; --i >= 0;)
        {
            auto& voice = voices[i];
            if (voice.isActive() && voice.getCurrentlyPlayingNote().noteID == finishedNote.noteID)
            {
                voice.setNote (finishedNote);
                voice.noteStopped (true);
            }
        }
    }

    void zoneLayoutChanged() override {}

    void setCurrentPlaybackSampleRate (double sampleRate) override
    {
        // The base lets its instrument's notes go at a new rate, but through
        // a function that cannot see ours.
        if (sampleRate != getSampleRate())
            noteTracking.releaseAll();

        juce::MPESynthesiserBase::setCurrentPlaybackSampleRate (sampleRate);

        for (int i = 0; i < numVoices; ++i)
            if (voices[i].isActive())
                voices[i].noteStopped (false);

        for (int i = 0; i < numVoices; ++i)
            voices[i].setCurrentSampleRate (sampleRate);
    }

    void handleMidiEvent (const juce::MidiMessage& message) override
    {
        if (message.isProgramChange())
            handleProgramChange (message.getChannel(), message.getProgramChangeNumber());
        else if (message.isController())
            handleController (message.getChannel(), message.getControllerNumber(), message.getControllerValue());

        noteTracking.processNextMidiEvent (message);
    }

    /** Audio thread: keeps the controller's last value, 0 to 1. */
    virtual void handleController (int channel, int number, int value)
    {
        if (juce::isPositiveAndBelow (number, numControllers))
            controllers[(size_t) number] = (float) value * controllerScale;
    }

    virtual void handleProgramChange (int channel, int program) {}

protected:
    using juce::MPESynthesiserBase::renderNextSubBlock;

    /** Audio thread: zeroes the range and mixes every busy voice into it. A
        range longer than prepare() allowed for is rendered in pieces. */
    void renderNextSubBlock (juce::AudioBuffer<float>& buffer, int startSample, int numSamples) override
    {
        buffer.clear (startSample, numSamples);

        const auto capacity = voiceBuffer.getNumSamples();
        const auto numChannels = juce::jmin (buffer.getNumChannels(), voiceBuffer.getNumChannels());
        if (capacity < 1)
            return;

        for (int done = 0; done < numSamples;)
        {
            const auto length = juce::jmin (capacity, numSamples - done);

            for (int i = 0; i < numVoices; ++i)
            {
                auto& voice = voices[i];
                if (! voice.isActive())
                    continue;

                voiceBuffer.clear (0, length);
                voice.renderNextBlock (voiceBuffer, 0, length);

                for (int c = 0; c < numChannels; ++c)
                    buffer.addFrom (c, startSample + done, voiceBuffer, c, 0, length);
            }

            done += length;
        }
    }

    int numVoices;
    std::unique_ptr<Voice[]> voices;
    std::array<float, numControllers> controllers {};
    bool perNoteBend = false;
    bool stopVoiceOnSteal = true;
    bool stealingEnabled = true;
    juce::AudioBuffer<float> voiceBuffer;
    juce::uint32 lastNoteOnCounter = 0;

private:
    static constexpr int firstChannel = 1;
    static constexpr int lastChannel = 16;
    static constexpr float controllerScale = 0.007874016f; // 1 / 127

    void copyToVoicesOf (const juce::MPENote& note)
    {
        for (int i = 0; i < numVoices; ++i)
            if (voices[i].isActive() && voices[i].getCurrentlyPlayingNote().noteID == note.noteID)
                voices[i].setNote (note);
    }

    // Scratch for the stealer, so that a steal allocates nothing.
    std::unique_ptr<Voice*[]> stealList;
};
} // namespace Orv::Audio
