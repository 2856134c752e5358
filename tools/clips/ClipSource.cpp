#include "ClipSource.h"
#include "Harmony.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <set>
#include <sstream>
#include <stdexcept>

namespace Orv::Tools::Clips
{
namespace
{
    constexpr auto commentMarker = "//";
    constexpr auto nameSeparator = " - ";
    constexpr auto barLine = "|";
    constexpr auto holdMark = "-";
    constexpr int defaultVelocity = 100;
    constexpr int highestVelocity = 127;
    // Lengths that loop evenly against patterns of any usual length.
    const std::set<int> allowedBarCounts { 1, 2, 4, 8 };
    // Characters that some file system refuses in a file name.
    constexpr auto forbiddenNameCharacters = "/\\:*?\"<>|";

    std::string lineError (int line, const std::string& message)
    {
        return "line " + std::to_string (line) + ": " + message;
    }

    std::string formatBeats (int ticks)
    {
        std::ostringstream out;
        out << static_cast<double> (ticks) / ticksPerQuarter;
        return out.str();
    }

    // Bar lines and brackets may touch their neighbours: "Dm7 2|G7 2".
    std::vector<std::string> tokensOf (std::string text)
    {
        std::string spaced;
        for (const auto c : text)
        {
            if (c == '|' || c == '(' || c == ')')
                spaced += std::string (" ") + c + " ";
            else
                spaced += c;
        }

        std::istringstream in (spaced);
        std::vector<std::string> tokens;
        for (std::string token; in >> token;)
            tokens.push_back (token);
        return tokens;
    }

    bool startsLikeNumber (const std::string& token)
    {
        return std::isdigit (static_cast<unsigned char> (token[0])) || token[0] == '.';
    }

    std::vector<std::string> splitName (const std::string& name)
    {
        std::vector<std::string> parts;
        size_t from = 0;
        for (auto at = name.find (nameSeparator); at != std::string::npos; at = name.find (nameSeparator, from))
        {
            parts.push_back (name.substr (from, at - from));
            from = at + std::string (nameSeparator).size();
        }
        parts.push_back (name.substr (from));
        return parts;
    }

    bool isTrimmedAndNonEmpty (const std::string& text)
    {
        return ! text.empty() && ! std::isspace (static_cast<unsigned char> (text.front()))
            && ! std::isspace (static_cast<unsigned char> (text.back()));
    }

    //==========================================================================
    /** The clip being read and where its writing has got to. */
    class ClipBuilder
    {
    public:
        ClipBuilder (std::string name, int line)
        {
            clip.name = std::move (name);
            clip.line = line;
        }

        void setLine (int lineNumber) { line = lineNumber; }

        [[noreturn]] void fail (const std::string& message) const
        {
            throw std::runtime_error (lineError (line, "[" + clip.name + "] " + message));
        }

        void readLine (const std::vector<std::string>& tokens)
        {
            if (tokens[0] == "velocity")
                readVelocity (tokens);
            else if (tokens[0] == "lead")
                readLead (tokens);
            else if (tokens[0] == "run")
                readRun (tokens);
            else
                readChords (tokens);
        }

        Clip finish()
        {
            line = clip.line;
            if (clip.notes.empty())
                fail ("the clip has no notes");
            if (time % ticksPerBar != 0 || allowedBarCounts.count (time / ticksPerBar) == 0)
                fail ("the clip lasts " + formatBeats (time) + " beats; it must be 1, 2, 4 or 8 bars of 4/4");
            clip.length = time;
            return clip;
        }

    private:
        Clip clip;
        int line = 0;
        int time = 0;
        int velocity = defaultVelocity;
        bool leading = false;
        std::vector<int> previousChord;
        std::vector<size_t> lastItem;

        void readVelocity (const std::vector<std::string>& tokens)
        {
            if (tokens.size() != 2)
                fail ("velocity takes one value");
            velocity = velocityOf (tokens[1]);
        }

        void readLead (const std::vector<std::string>& tokens)
        {
            if (tokens.size() != 1)
                fail ("lead takes no value");
            leading = true;
        }

        int velocityOf (const std::string& text) const
        {
            char* end = nullptr;
            const auto value = std::strtol (text.c_str(), &end, 10);
            if (text.empty() || *end != '\0' || value < 1 || value > highestVelocity)
                fail ("a velocity is a whole number from 1 to 127: " + text);
            return static_cast<int> (value);
        }

        int ticksOf (const std::string& text) const
        {
            char* end = nullptr;
            const auto beats = std::strtod (text.c_str(), &end);
            const auto ticks = std::lround (beats * ticksPerQuarter);
            if (text.empty() || *end != '\0' || ticks <= 0
                || std::abs (beats * ticksPerQuarter - static_cast<double> (ticks)) > 1.0e-6)
                fail ("not a length in beats (a multiple of 1/" + std::to_string (ticksPerQuarter) + "): " + text);
            return static_cast<int> (ticks);
        }

        void checkBarLine() const
        {
            if (time % ticksPerBar != 0)
                fail ("a bar line at beat " + formatBeats (time) + ", which is not the start of a bar");
        }

        void add (const std::vector<int>& pitches, int itemVelocity, int length)
        {
            std::set<int> distinct (pitches.begin(), pitches.end());
            if (distinct.size() != pitches.size())
                fail ("a note twice in one chord");

            lastItem.clear();
            for (const auto pitch : pitches)
            {
                if (pitch < lowestNote || pitch > highestNote)
                    fail ("note " + std::to_string (pitch) + " lies outside the register "
                          + std::to_string (lowestNote) + " to " + std::to_string (highestNote));
                lastItem.push_back (clip.notes.size());
                clip.notes.push_back ({ pitch, itemVelocity, time, length });
            }
            time += length;
        }

        void hold (int length)
        {
            if (lastItem.empty())
                fail ("\"-\" holds the note before it, and there is none");
            for (const auto index : lastItem)
                clip.notes[index].length += length;
            time += length;
        }

        //======================================================================
        // "run <beats per step>" then notes, "-" and bar lines.
        void readRun (const std::vector<std::string>& tokens)
        {
            if (tokens.size() < 3)
                fail ("run takes a step length in beats and notes");
            const auto step = ticksOf (tokens[1]);

            for (size_t i = 2; i < tokens.size(); ++i)
            {
                const auto& token = tokens[i];
                if (token == barLine)
                    checkBarLine();
                else if (token == holdMark)
                    hold (step);
                else if (const auto note = parseNote (token))
                    add ({ *note }, velocity, step);
                else
                    fail ("not a note: " + token);
            }
        }

        //======================================================================
        // Items "<chord> [hints] <beats>" and bar lines.
        void readChords (const std::vector<std::string>& tokens)
        {
            for (size_t i = 0; i < tokens.size();)
            {
                if (tokens[i] == barLine)
                {
                    checkBarLine();
                    ++i;
                    continue;
                }

                std::vector<int> explicitNotes;
                std::optional<Chord> chord;
                if (tokens[i] == "(")
                {
                    for (++i; i < tokens.size() && tokens[i] != ")"; ++i)
                    {
                        const auto note = parseNote (tokens[i]);
                        if (! note.has_value())
                            fail ("not a note: " + tokens[i]);
                        explicitNotes.push_back (*note);
                    }
                    if (i == tokens.size() || explicitNotes.empty())
                        fail ("notes in brackets end with \")\" and there is at least one");
                    std::sort (explicitNotes.begin(), explicitNotes.end());
                }
                else
                {
                    chord = parseChordSymbol (tokens[i]);
                    if (! chord.has_value())
                        fail ("not a chord symbol this source knows: " + tokens[i]);
                }
                ++i;

                VoicingHints hints;
                auto itemVelocity = velocity;
                for (; i < tokens.size() && tokens[i] != barLine && ! startsLikeNumber (tokens[i]); ++i)
                    readHint (tokens[i], hints, itemVelocity, chord.has_value());

                if (i == tokens.size() || tokens[i] == barLine)
                    fail ("a chord ends with its length in beats");
                const auto length = ticksOf (tokens[i++]);

                const auto notes = chord.has_value() ? voice (*chord, hints) : explicitNotes;
                add (notes, itemVelocity, length);
                previousChord = notes;
            }
        }

        void readHint (const std::string& hint, VoicingHints& hints, int& itemVelocity, bool isSymbol) const
        {
            if (hint.size() > 1 && hint[0] == 'v' && std::isdigit (static_cast<unsigned char> (hint[1])))
            {
                itemVelocity = velocityOf (hint.substr (1));
                return;
            }

            if (! isSymbol)
                fail ("notes in brackets take no voicing hint: " + hint);

            if (hint == "rootless")
                hints.rootless = true;
            else if (hint == "no5")
                hints.noFifth = true;
            else if (hint == "drop2")
                hints.dropTwo = true;
            else if (hint == "inv1" || hint == "inv2" || hint == "inv3")
                hints.inversion = hint.back() - '0';
            else if (hint == "up")
                ++hints.octaveShift;
            else if (hint == "down")
                --hints.octaveShift;
            else
                fail ("not a voicing hint: " + hint);
        }

        std::vector<int> voice (const Chord& chord, const VoicingHints& hints) const
        {
            try
            {
                if (leading && ! previousChord.empty() && ! hints.fixesVoicing())
                    return voiceChordNear (chord, hints, previousChord);
                return voiceChord (chord, hints);
            }
            catch (const std::runtime_error& e)
            {
                fail (e.what());
            }
        }
    };

    void checkName (const std::string& name, int line, std::set<std::string>& names)
    {
        const auto fail = [&] (const std::string& message) {
            throw std::runtime_error (lineError (line, "[" + name + "] " + message));
        };

        const auto parts = splitName (name);
        if (parts.size() < 2 || parts.size() > 3
            || ! std::all_of (parts.begin(), parts.end(), isTrimmedAndNonEmpty))
            fail ("a clip is named \"<Group> - <Title>\" or \"<Group> - <Subgroup> - <Title>\"");
        if (name.find_first_of (forbiddenNameCharacters) != std::string::npos)
            fail (std::string ("a file name cannot hold any of ") + forbiddenNameCharacters);
        if (! names.insert (name).second)
            fail ("the name is already taken");
    }
} // namespace

std::vector<Clip> parseClips (std::istream& input)
{
    std::vector<Clip> clips;
    std::optional<ClipBuilder> builder;
    std::set<std::string> names;
    int lineNumber = 0;

    for (std::string text; std::getline (input, text);)
    {
        ++lineNumber;
        text = text.substr (0, text.find (commentMarker));
        const auto first = text.find_first_not_of (" \t\r");
        if (first == std::string::npos)
            continue;

        if (text[first] == '[')
        {
            const auto close = text.find (']', first);
            if (close == std::string::npos || text.find_first_not_of (" \t\r", close + 1) != std::string::npos)
                throw std::runtime_error (lineError (lineNumber, "a clip starts with a line \"[<Group> - <Title>]\""));
            if (builder.has_value())
                clips.push_back (builder->finish());

            const auto name = text.substr (first + 1, close - first - 1);
            checkName (name, lineNumber, names);
            builder.emplace (name, lineNumber);
            continue;
        }

        if (! builder.has_value())
            throw std::runtime_error (lineError (lineNumber, "notes before the first clip"));
        builder->setLine (lineNumber);
        builder->readLine (tokensOf (text));
    }

    if (builder.has_value())
        clips.push_back (builder->finish());
    return clips;
}
} // namespace Orv::Tools::Clips
