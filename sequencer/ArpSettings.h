#pragma once

#include "parameters/ParamHolder.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>

namespace Orv::Audio::Plugins::Halvane
{
/** The arp's settings: the parameters that the note path reads on every
    span, held here for the state, and the octave range. The GUI, the host
    and tests write the parameters on their threads; the audio thread only
    reads them. */
struct ArpSettings
{
    /** The grid choices of Quantize, in quarter notes: 4/4 down to 1/32. */
    static constexpr std::array<double, 6> quantizeLengths { 4.0, 2.0, 1.0, 0.5, 0.25, 0.125 };
    /** Quantize's default choice, "1/4". */
    static constexpr int32_t defaultQuantize = 2;
    /** What a Quantize index off the table means. */
    static constexpr double fallbackQuantizeLength = 1.0;

    static constexpr int32_t arpOff = 0;
    static constexpr int32_t arpOn = 1;

    static constexpr int minimumTranspose = -12;
    static constexpr int maximumTranspose = 12;
    static constexpr int minimumOctave = -3;
    static constexpr int maximumOctave = 3;

    /** The octave range of a new state: octaves 1 to 8, notes 12 to 96. */
    static constexpr int32_t defaultLowOctave = 1;
    static constexpr int32_t defaultHighOctave = 8;
    static constexpr int notesPerOctave = 12;

    /** The octave range as its two words. */
    struct Octaves
    {
        int32_t low = defaultLowOctave;
        int32_t high = defaultHighOctave;
    };

    /** Any thread: the quarter notes of a Quantize index. */
    static constexpr double quantizeLengthFor (int index) noexcept
    {
        return index >= 0 && index < (int) quantizeLengths.size() ? quantizeLengths[(size_t) index]
                                                                  : fallbackQuantizeLength;
    }

    /** Any thread: the low octave in the low word, in the high word the larger
        of the two, so that a reader never sees a high octave below the low. */
    static constexpr int64_t packOctaves (int32_t low, int32_t high) noexcept
    {
        return (int64_t) ((uint64_t) (uint32_t) std::max (low, high) << 32 | (uint64_t) (uint32_t) low);
    }

    static constexpr Octaves unpackOctaves (int64_t packed) noexcept
    {
        return { (int32_t) (uint32_t) ((uint64_t) packed & 0xffffffffu), (int32_t) (uint32_t) ((uint64_t) packed >> 32) };
    }

    /** Any thread: the octave range as one word, so that the two halves are
        always read together. */
    Octaves getOctaves() const noexcept { return unpackOctaves (octaveRange.load()); }
    void setOctaves (int32_t low, int32_t high) noexcept { octaveRange.store (packOctaves (low, high)); }

    //==============================================================================
    /** Any thread; what the note path reads on every span, straight from the
        parameters' atomic values: no lock, no allocation. */
    bool isArpOn() const noexcept { return arpActive->getIndex() > arpOff; }
    bool isRetriggerOn() const noexcept { return retrigger->get(); }
    int getQuantize() const noexcept { return quantize->getIndex(); }
    int getTranspose() const noexcept { return transpose->get(); }
    int getOctave() const noexcept { return octave->get(); }
    int getKey() const noexcept { return key->getIndex(); }

    //==============================================================================
    /** Quantize: an index into quantizeLengths; a slot change waits for the
        next boundary of this grid. */
    Audio::ParamHolder<juce::AudioParameterChoice> quantize {
        "Quantize", "Quantize", juce::StringArray { "4/4", "2/4", "1/4", "1/8", "1/16", "1/32" }, defaultQuantize
    };
    /** Retrigger: a note-on restarts the active pattern at the next boundary. */
    Audio::ParamHolder<juce::AudioParameterBool> retrigger { "Retrigger", "Retrigger", false };
    /** Transpose: semitones added to every played note. */
    Audio::ParamHolder<juce::AudioParameterInt> transpose { "Transpose", "Transpose", minimumTranspose,
                                                            maximumTranspose, 0 };
    /** Octave: whole octaves added to every played note. */
    Audio::ParamHolder<juce::AudioParameterInt> octave { "Octave", "Octave", minimumOctave, maximumOctave, 0 };
    /** Key: the file player's transposition in semitones from C; it replaces
        Transpose while the player is active. */
    Audio::ParamHolder<juce::AudioParameterChoice> key {
        "Key", "Key", juce::StringArray { "C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B" }, 0
    };
    /** ArpActive: "Off" lets the played notes through the chain; "On"
        replaces them by the arp's notes. */
    Audio::ParamHolder<juce::AudioParameterChoice> arpActive { "ArpActive", "ArpActive",
                                                               juce::StringArray { "Off", "On" }, arpOn };
    /** OctaveRange: the packed octave range (see packOctaves). Not a
        parameter: the GUI's two range controls write it together. */
    std::atomic<int64_t> octaveRange { packOctaves (defaultLowOctave, defaultHighOctave) };

    static_assert (std::atomic<int64_t>::is_always_lock_free);
};
} // namespace Orv::Audio::Plugins::Halvane
