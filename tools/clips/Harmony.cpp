#include "Harmony.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <stdexcept>

namespace Orv::Tools::Clips
{
namespace
{
    constexpr int rootInterval = 0;
    constexpr int fifthInterval = 7;
    constexpr int flatNinthInterval = 13;
    constexpr int sharpNinthInterval = 15;
    // Two lowest notes closer than this sound as mud in the register.
    constexpr int smallestBottomInterval = 3;
    constexpr int highestMidiNote = 127;
    // Far enough either way to reach every octave of the register from any
    // root and any shape.
    constexpr int octavesSearched = 10;

    struct Quality
    {
        const char* suffix;
        std::vector<int> intervals;
    };

    // Tones as they stack in root position; extensions sit above the seventh
    // (a ninth is 14), as a player reads them. A thirteenth leaves out the
    // fifth and the eleventh, which clash in the usual voicing.
    const std::vector<Quality>& qualities()
    {
        static const std::vector<Quality> table {
            { "", { 0, 4, 7 } },
            { "m", { 0, 3, 7 } },
            { "dim", { 0, 3, 6 } },
            { "aug", { 0, 4, 8 } },
            { "5", { 0, 7, 12 } },
            { "sus2", { 0, 2, 7 } },
            { "sus4", { 0, 5, 7 } },
            { "6", { 0, 4, 7, 9 } },
            { "m6", { 0, 3, 7, 9 } },
            { "69", { 0, 4, 7, 9, 14 } },
            { "add9", { 0, 4, 7, 14 } },
            { "madd9", { 0, 3, 7, 14 } },
            { "7", { 0, 4, 7, 10 } },
            { "maj7", { 0, 4, 7, 11 } },
            { "m7", { 0, 3, 7, 10 } },
            { "mMaj7", { 0, 3, 7, 11 } },
            { "m7b5", { 0, 3, 6, 10 } },
            { "dim7", { 0, 3, 6, 9 } },
            { "7sus4", { 0, 5, 7, 10 } },
            { "9", { 0, 4, 7, 10, 14 } },
            { "maj9", { 0, 4, 7, 11, 14 } },
            { "m9", { 0, 3, 7, 10, 14 } },
            { "7b9", { 0, 4, 7, 10, 13 } },
            { "7#9", { 0, 4, 7, 10, 15 } },
            { "maj7#11", { 0, 4, 7, 11, 18 } },
            { "m11", { 0, 3, 7, 10, 14, 17 } },
            { "13", { 0, 4, 10, 14, 21 } },
        };
        return table;
    }

    int positiveModulo (int value, int divisor)
    {
        return ((value % divisor) + divisor) % divisor;
    }

    // The letter and accidental of a name, as semitones above the C of the
    // letter's octave: "Cb" is -1 and "B#" is 12, so that octaves stay right.
    std::optional<int> semitonesOf (const std::string& name)
    {
        static const std::string letters = "CDEFGAB";
        static const int naturals[] = { 0, 2, 4, 5, 7, 9, 11 };

        if (name.empty() || name.size() > 2)
            return std::nullopt;
        const auto letter = letters.find (name[0]);
        if (letter == std::string::npos)
            return std::nullopt;

        auto semitones = naturals[letter];
        if (name.size() == 2)
        {
            if (name[1] == '#')
                ++semitones;
            else if (name[1] == 'b')
                --semitones;
            else
                return std::nullopt;
        }
        return semitones;
    }

    // A root or bass is one letter with an optional accidental; no quality
    // starts with '#' or 'b', so the longer reading is always the right one.
    size_t rootLength (const std::string& symbol)
    {
        return symbol.size() > 1 && (symbol[1] == '#' || symbol[1] == 'b') ? 2 : 1;
    }

    // A chord tone: where it sounds, relative to the root, and which tone of
    // the symbol it is (its interval in root position).
    struct Tone
    {
        int position;
        int interval;

        bool operator< (const Tone& other) const { return position < other.position; }
    };

    void eraseInterval (std::vector<Tone>& tones, int interval, const std::string& hint)
    {
        const auto found = std::find_if (tones.begin(), tones.end(), [interval] (const Tone& t) { return t.interval == interval; });
        if (found == tones.end())
            throw std::runtime_error ("\"" + hint + "\" on a chord without that tone");
        tones.erase (found);
    }

    bool isTaken (const std::vector<Tone>& tones, int position)
    {
        return std::any_of (tones.begin(), tones.end(), [position] (const Tone& t) { return t.position == position; });
    }

    // The tones above the bass that the hints keep.
    std::vector<Tone> upperTonesOf (const Chord& chord, const VoicingHints& hints)
    {
        std::vector<Tone> tones;
        for (const auto interval : chord.intervals)
            tones.push_back ({ interval, interval });
        if (hints.rootless)
            eraseInterval (tones, rootInterval, "rootless");
        if (hints.noFifth)
            eraseInterval (tones, fifthInterval, "no5");

        // A bass that is a chord tone is not doubled above it, as long as a
        // chord remains: C/E is E under C and G.
        if (chord.bass.has_value())
        {
            const auto bass = positiveModulo (*chord.bass - chord.root, semitonesPerOctave);
            std::vector<Tone> others;
            std::copy_if (tones.begin(), tones.end(), std::back_inserter (others),
                          [bass] (const Tone& t) { return positiveModulo (t.interval, semitonesPerOctave) != bass; });
            if (others.size() >= 2)
                tones = others;
        }

        if (tones.size() < 2)
            throw std::runtime_error ("too few notes left for a chord");
        std::sort (tones.begin(), tones.end());
        return tones;
    }

    // A flat, plain or sharp ninth a second away from its root is a cluster,
    // not a ninth: wherever the root sounds, the ninth stays a ninth above it.
    void keepNinthsAboveRoot (std::vector<Tone>& tones)
    {
        const auto root = std::find_if (tones.begin(), tones.end(), [] (const Tone& t) { return t.interval == rootInterval; });
        if (root == tones.end())
            return;
        const auto rootPosition = root->position;

        for (auto& tone : tones)
        {
            if (tone.interval < flatNinthInterval || tone.interval > sharpNinthInterval)
                continue;
            while (tone.position < rootPosition + tone.interval)
                tone.position += semitonesPerOctave;
        }
        std::sort (tones.begin(), tones.end());
    }

    // A voicing relative to the root: the inversion raises the lowest tone an
    // octave that many times, drop-2 lowers the second from the top an
    // octave, and a bass goes under everything.
    std::vector<int> shapeOf (const Chord& chord, const VoicingHints& hints, int inversion)
    {
        auto tones = upperTonesOf (chord, hints);
        if (inversion < 0 || inversion >= static_cast<int> (tones.size()))
            throw std::runtime_error ("the chord has no inversion " + std::to_string (inversion));

        for (int i = 0; i < inversion; ++i)
        {
            auto raised = tones.front();
            tones.erase (tones.begin());
            do
                raised.position += semitonesPerOctave;
            while (isTaken (tones, raised.position));
            tones.push_back (raised);
            std::sort (tones.begin(), tones.end());
        }
        keepNinthsAboveRoot (tones);

        if (hints.dropTwo)
        {
            if (tones.size() < 3)
                throw std::runtime_error ("drop2 needs three notes or more");
            tones[tones.size() - 2].position -= semitonesPerOctave;
            std::sort (tones.begin(), tones.end());
        }

        std::vector<int> positions;
        for (const auto& tone : tones)
            positions.push_back (tone.position);
        if (std::adjacent_find (positions.begin(), positions.end()) != positions.end())
            throw std::runtime_error ("the voicing puts two tones on one note");

        if (chord.bass.has_value())
        {
            const auto bass = *chord.bass - chord.root;
            const auto below = positions.front() - 1;
            positions.insert (positions.begin(), below - positiveModulo (below - bass, semitonesPerOctave));
        }
        return positions;
    }

    int distanceToNearest (int note, const std::vector<int>& others)
    {
        auto nearest = INT_MAX;
        for (const auto other : others)
            nearest = std::min (nearest, std::abs (note - other));
        return nearest;
    }

    // How far the voices move: each new note to the nearest old one and each
    // old note to the nearest new one, so that neither a note left behind nor
    // a note that leaps in comes for free.
    int movementBetween (const std::vector<int>& from, const std::vector<int>& to)
    {
        auto total = 0;
        for (const auto note : to)
            total += distanceToNearest (note, from);
        for (const auto note : from)
            total += distanceToNearest (note, to);
        return total;
    }

    bool fitsRegister (const std::vector<int>& notes)
    {
        return notes.front() >= lowestNote && notes.back() <= highestNote;
    }

    std::vector<int> transposed (const std::vector<int>& shape, int by)
    {
        auto notes = shape;
        for (auto& note : notes)
            note += by;
        return notes;
    }
} // namespace

std::optional<int> parsePitchClass (const std::string& name)
{
    const auto semitones = semitonesOf (name);
    if (! semitones.has_value())
        return std::nullopt;
    return positiveModulo (*semitones, semitonesPerOctave);
}

std::optional<int> parseNote (const std::string& name)
{
    const auto split = name.find_first_of ("-0123456789");
    if (split == std::string::npos || split == 0)
        return std::nullopt;

    const auto semitones = semitonesOf (name.substr (0, split));
    const auto octaveText = name.substr (split);
    char* end = nullptr;
    const auto octave = std::strtol (octaveText.c_str(), &end, 10);
    if (! semitones.has_value() || *end != '\0')
        return std::nullopt;

    // Octave -1 starts at note 0, so middle C is C4.
    const auto note = static_cast<int> ((octave + 1) * semitonesPerOctave) + *semitones;
    if (note < 0 || note > highestMidiNote)
        return std::nullopt;
    return note;
}

std::optional<Chord> parseChordSymbol (const std::string& symbol)
{
    if (symbol.empty())
        return std::nullopt;

    const auto slash = symbol.find ('/');
    const auto body = symbol.substr (0, slash);
    const auto length = rootLength (body);
    const auto root = parsePitchClass (body.substr (0, length));
    if (! root.has_value())
        return std::nullopt;

    const auto suffix = body.substr (length);
    const auto& table = qualities();
    const auto quality = std::find_if (table.begin(), table.end(), [&suffix] (const Quality& q) { return suffix == q.suffix; });
    if (quality == table.end())
        return std::nullopt;

    Chord chord { *root, quality->intervals, std::nullopt };
    if (slash != std::string::npos)
    {
        const auto bass = parsePitchClass (symbol.substr (slash + 1));
        if (! bass.has_value())
            return std::nullopt;
        chord.bass = *bass;
    }
    return chord;
}

std::vector<int> voiceChord (const Chord& chord, const VoicingHints& hints)
{
    const auto shape = shapeOf (chord, hints, hints.inversion.value_or (0));
    const auto lowest = chord.root + shape.front();
    const auto intoRegister = lowestNote + positiveModulo (lowest - lowestNote, semitonesPerOctave) - lowest;
    return transposed (shape, chord.root + intoRegister + hints.octaveShift * semitonesPerOctave);
}

std::vector<int> voiceChordNear (const Chord& chord, const VoicingHints& hints, const std::vector<int>& previous)
{
    // A second at the bottom of a chord in this register is mud, so such a
    // voicing is taken only when the chord has no other.
    std::vector<int> best, bestWithSecondBelow;
    auto bestMovement = INT_MAX, bestMovementWithSecondBelow = INT_MAX;
    const auto inversions = static_cast<int> (upperTonesOf (chord, hints).size());

    // In order of inversion, then from low to high, so that of two equally
    // close voicings the plainer one wins on every run.
    for (int inversion = 0; inversion < inversions; ++inversion)
    {
        const auto shape = shapeOf (chord, hints, inversion);
        const auto secondBelow = shape[1] - shape[0] < smallestBottomInterval;
        for (int octave = -octavesSearched; octave <= octavesSearched; ++octave)
        {
            const auto notes = transposed (shape, chord.root + octave * semitonesPerOctave);
            if (! fitsRegister (notes))
                continue;
            const auto movement = movementBetween (previous, notes);
            auto& bestSoFar = secondBelow ? bestMovementWithSecondBelow : bestMovement;
            if (movement < bestSoFar)
            {
                (secondBelow ? bestWithSecondBelow : best) = notes;
                bestSoFar = movement;
            }
        }
    }

    if (best.empty())
        best = bestWithSecondBelow;
    if (best.empty())
        throw std::runtime_error ("no voicing of the chord fits the register");
    return best;
}
} // namespace Orv::Tools::Clips
