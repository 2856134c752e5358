#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Orv::Tools::Clips
{
//==============================================================================
// The register every clip keeps to: full enough to sound like a chord, high
// enough that an arp climbing an octave or two above it stays musical.
constexpr int lowestNote = 48;  // C3, where 60 is middle C (C4)
constexpr int highestNote = 79; // G5
constexpr int semitonesPerOctave = 12;

/** A pitch class, 0 for C to 11 for B, from "C", "F#", "Bb" (one
    accidental at most), or nothing. */
std::optional<int> parsePitchClass (const std::string& name);

/** A MIDI note from a name with its octave, "C4" being 60 and
    "Bb3" 58, or nothing. */
std::optional<int> parseNote (const std::string& name);

//==============================================================================
/** What a chord symbol says: its root, its tones as a close stack above the
    root (a ninth is 14, not 2) and a bass other than the root, if any. */
struct Chord
{
    int root = 0;
    std::vector<int> intervals;
    std::optional<int> bass;
};

/** The chord of a symbol such as "Dm7", "G13", "C/G" or "F#m7b5",
    or nothing when the symbol is not one this source knows. */
std::optional<Chord> parseChordSymbol (const std::string& symbol);

/** How a chord's tones are laid out. An inversion or an octave given here
    fixes the voicing; otherwise voice leading may choose both. */
struct VoicingHints
{
    bool rootless = false;
    bool noFifth = false;
    bool dropTwo = false;
    std::optional<int> inversion;
    int octaveShift = 0;

    bool fixesVoicing() const { return inversion.has_value() || octaveShift != 0; }
};

/** The chord's notes, lowest first, with the lowest in the octave
    that starts at lowestNote, then moved by the hints' octave shift. A ninth
    stays a ninth above the root in every inversion. Throws
    std::runtime_error for hints the chord cannot take (a second inversion of
    a two-note chord, "no5" on a chord without a fifth). */
std::vector<int> voiceChord (const Chord& chord, const VoicingHints& hints);

/** Of all inversions of the chord and all octaves in which it fits
    the register, the voicing whose notes lie closest to the previous chord's,
    so that each voice moves as little as it can; voicings with a second
    between their two lowest notes only when there is no other. Throws
    std::runtime_error when no voicing fits. */
std::vector<int> voiceChordNear (const Chord& chord, const VoicingHints& hints, const std::vector<int>& previous);
} // namespace Orv::Tools::Clips
