#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>

namespace Orv::Audio::Plugins::Halvane
{
/** The settings that the note path reads on every span. Each field is bound
    to the host parameter of the same name later; until the parameter list
    exists the fields are plain atomics that the GUI or a test writes and the
    audio thread reads. All reads and writes are lock-free from any thread. */
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
    /** ArpActive: index 0 "Off" lets the played notes through the chain; any
        other index replaces them by the arp's notes. */
    std::atomic<int32_t> arpActive { arpOn };
    /** Retrigger: a note-on restarts the active pattern at the next boundary. */
    std::atomic<bool> retrigger { false };
    /** Quantize: an index into quantizeLengths. */
    std::atomic<int32_t> quantize { defaultQuantize };
    /** Transpose: semitones added to every played note, -12 to 12. */
    std::atomic<int32_t> transpose { 0 };
    /** Octave: whole octaves added to every played note, -3 to 3. */
    std::atomic<int32_t> octave { 0 };
    /** Key: the file player's transposition in semitones, 0 to 11; it
        replaces Transpose while the player is active. */
    std::atomic<int32_t> key { 0 };
    /** OctaveRange: the packed octave range (see packOctaves). */
    std::atomic<int64_t> octaveRange { packOctaves (defaultLowOctave, defaultHighOctave) };

    static_assert (std::atomic<int64_t>::is_always_lock_free);
};
} // namespace Orv::Audio::Plugins::Halvane
