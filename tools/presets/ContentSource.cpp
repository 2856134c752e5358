#include "ContentSource.h"

#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

namespace Orv::Tools::Presets
{
namespace
{
    constexpr int patternsPerPreset = 8;
    constexpr int numOscillators = 4;
    /** The text a volume takes at its floor: silent. */
    constexpr auto silentVolume = "-100.00 dB";

    [[noreturn]] void fail (int line, const std::string& message)
    {
        throw std::runtime_error ("line " + std::to_string (line) + ": " + message);
    }

    std::string trim (const std::string& text)
    {
        const auto first = text.find_first_not_of (" \t\r");
        if (first == std::string::npos)
            return {};
        const auto last = text.find_last_not_of (" \t\r");
        return text.substr (first, last - first + 1);
    }

    std::vector<std::string> split (const std::string& text, char separator)
    {
        std::vector<std::string> parts;
        std::stringstream stream (text);
        std::string part;
        while (std::getline (stream, part, separator))
            parts.push_back (trim (part));
        return parts;
    }

    std::vector<std::string> words (const std::string& text)
    {
        std::vector<std::string> result;
        std::stringstream stream (text);
        std::string word;
        while (stream >> word)
            result.push_back (word);
        return result;
    }

    int toInt (int line, const std::string& text)
    {
        char* end = nullptr;
        const auto value = std::strtol (text.c_str(), &end, 10);
        if (text.empty() || *end != '\0')
            fail (line, "not a whole number: '" + text + "'");
        return (int) value;
    }

    double toReal (int line, const std::string& text)
    {
        char* end = nullptr;
        const auto value = std::strtod (text.c_str(), &end);
        if (text.empty() || *end != '\0')
            fail (line, "not a number: '" + text + "'");
        return value;
    }

    /** The lines of a source without comments and blanks, each with its
        number; "[path] id" headers open a preset. */
    template <typename ReadLine>
    std::vector<PresetSpec> readPresets (std::istream& input, ReadLine&& readLine)
    {
        std::vector<PresetSpec> presets;
        std::set<std::string> paths;
        std::string raw;
        int line = 0;

        while (std::getline (input, raw))
        {
            ++line;
            const auto text = trim (raw.substr (0, raw.find ('#')));
            if (text.empty())
                continue;

            if (text.front() == '[')
            {
                const auto close = text.find (']');
                if (close == std::string::npos)
                    fail (line, "a header is \"[folder/name] id\"");

                PresetSpec preset;
                preset.path = trim (text.substr (1, close - 1));
                preset.id = trim (text.substr (close + 1));
                preset.line = line;
                if (preset.path.empty() || preset.id.empty())
                    fail (line, "a header needs a name and an id");
                if (! paths.insert (preset.path).second)
                    fail (line, "a second preset named " + preset.path);
                presets.push_back (preset);
                continue;
            }

            if (presets.empty())
                fail (line, "content before the first header");
            readLine (presets.back(), text, line);
        }

        return presets;
    }

    //==============================================================================
    std::vector<BarSpec> parseBars (int line, const std::string& text)
    {
        std::vector<BarSpec> bars;
        for (const auto& bar : split (text, '+'))
        {
            const auto parts = split (bar, '/');
            if (parts.size() != 2)
                fail (line, "a bar is num/denum: '" + bar + "'");
            const BarSpec spec { toInt (line, parts[0]), toInt (line, parts[1]) };
            if (spec.num < 1 || spec.denum < 1)
                fail (line, "an empty bar: '" + bar + "'");
            bars.push_back (spec);
        }
        return bars;
    }

    /** A cell's rows with their marks: "64", "64!", "61'", "64+67". */
    std::vector<StepSpec> parseCell (int line, const std::string& cell)
    {
        std::vector<StepSpec> steps;
        for (auto note : split (cell, '+'))
        {
            StepSpec step;
            if (! note.empty() && note.back() == '!')
                step.velocity = accentVelocity;
            else if (! note.empty() && note.back() == '\'')
                step.velocity = softVelocity;
            if (step.velocity != defaultVelocity)
                note.pop_back();

            step.row = toInt (line, note);
            if (step.row < lowestRow || step.row > highestRow)
                fail (line, "row " + note + " lies outside " + std::to_string (lowestRow) + " to "
                                + std::to_string (highestRow) + ", and a load would drop it");
            steps.push_back (step);
        }
        return steps;
    }

    /** "<bars> <grid> [x] [gate <g>] : <cells>" */
    PatternSpec parsePattern (int line, const std::string& text)
    {
        const auto colon = text.find (':');
        if (colon == std::string::npos)
            fail (line, "a pattern is \"<bars> <grid> [x] [gate <g>] : <cells>\"");

        const auto head = words (text.substr (0, colon));
        if (head.size() < 2)
            fail (line, "a pattern needs its bars and its grid");

        PatternSpec pattern;
        pattern.bars = parseBars (line, head[0]);
        pattern.grid = toInt (line, head[1]);
        if (pattern.grid < 1)
            fail (line, "a grid of no cells");

        double gate = 1.0;
        for (size_t i = 2; i < head.size(); ++i)
        {
            if (head[i] == "x")
                pattern.multiply = true;
            else if (head[i] == "gate" && i + 1 < head.size())
                gate = toReal (line, head[++i]);
            else
                fail (line, "unknown pattern option '" + head[i] + "'");
        }
        if (gate <= 0.0 || gate > 1.0)
            fail (line, "a gate lies above 0 and at most 1");

        std::vector<std::string> cells;
        for (const auto& cell : words (text.substr (colon + 1)))
            if (cell != "|")
                cells.push_back (cell);

        if ((int) cells.size() != pattern.grid)
            fail (line, "the grid has " + std::to_string (pattern.grid) + " cells, the line "
                            + std::to_string (cells.size()));

        // Steps are held in cells until the end, where the gate shortens them.
        struct Held
        {
            StepSpec step;
            int cells = 1;
            int startCell = 0;
        };
        std::vector<Held> held;
        std::vector<size_t> open;

        for (int c = 0; c < (int) cells.size(); ++c)
        {
            const auto& cell = cells[(size_t) c];
            if (cell == ".")
            {
                open.clear();
            }
            else if (cell == "-")
            {
                if (open.empty())
                    fail (line, "a tie in cell " + std::to_string (c + 1) + " holds nothing");
                for (const auto index : open)
                    ++held[index].cells;
            }
            else
            {
                open.clear();
                for (const auto& step : parseCell (line, cell))
                {
                    open.push_back (held.size());
                    held.push_back ({ step, 1, c });
                }
            }
        }

        const auto grid = (double) pattern.grid;
        for (auto& h : held)
        {
            h.step.start = h.startCell / grid;
            h.step.length = h.cells * gate / grid;
            pattern.steps.push_back (h.step);
        }
        return pattern;
    }

    void readPatternLine (PresetSpec& preset, const std::string& text, int line)
    {
        if (text.rfind ("params", 0) == 0)
        {
            if (! preset.settings.empty())
                fail (line, "a second params line");
            for (const auto& item : words (text.substr (6)))
            {
                const auto equals = item.find ('=');
                if (equals == std::string::npos || equals == 0 || equals + 1 == item.size())
                    fail (line, "a parameter is Key=Text: '" + item + "'");
                preset.settings.emplace_back (item.substr (0, equals), item.substr (equals + 1));
            }
            if (preset.settings.empty())
                fail (line, "params without a parameter");
            return;
        }

        if ((int) preset.patterns.size() == patternsPerPreset)
            fail (line, preset.path + " has more than " + std::to_string (patternsPerPreset) + " patterns");
        preset.patterns.push_back (parsePattern (line, text));
    }

    //==============================================================================
    /** "key value..." of an item, split at its first blank. */
    std::pair<std::string, std::string> keyAndValue (const std::string& item)
    {
        const auto blank = item.find (' ');
        if (blank == std::string::npos)
            return { item, {} };
        return { item.substr (0, blank), trim (item.substr (blank + 1)) };
    }

    std::string decibels (int line, const std::string& value)
    {
        toReal (line, value);
        return value + " dB";
    }

    using ItemMap = std::map<std::string, std::string>;

    /** The items of a line by their keys: an item's value must be there,
        and a key comes once. */
    ItemMap itemsOf (int line, const std::vector<std::string>& items, size_t first)
    {
        ItemMap map;
        for (size_t i = first; i < items.size(); ++i)
        {
            const auto [key, value] = keyAndValue (items[i]);
            if (value.empty())
                fail (line, "'" + key + "' needs a value");
            if (! map.emplace (key, value).second)
                fail (line, "'" + key + "' given twice");
        }
        return map;
    }

    void readSoundLine (PresetSpec& sound, const std::string& text, int line)
    {
        const auto equals = text.find ('=');
        if (equals == std::string::npos)
            fail (line, "a sound line is \"<section> = <items>\"");

        const auto section = words (text.substr (0, equals));
        const auto items = split (text.substr (equals + 1), ',');
        if (section.empty() || items.empty() || items.front().empty())
            fail (line, "a sound line is \"<section> = <items>\"");

        auto& out = sound.settings;
        auto take = [&] (ItemMap& map, const std::string& key, const std::string& path, auto&& convert)
        {
            const auto found = map.find (key);
            if (found == map.end())
                return;
            out.emplace_back (path, convert (found->second));
            map.erase (found);
        };
        auto asIs = [] (const std::string& value) { return value; };
        auto asDb = [line] (const std::string& value) { return decibels (line, value); };
        auto noneLeft = [line] (const ItemMap& map)
        {
            if (! map.empty())
                fail (line, "unknown item '" + map.begin()->first + "'");
        };
        const bool off = items.size() == 1 && items.front() == "off";

        if (section[0] == "osc" && section.size() == 2)
        {
            const auto index = toInt (line, section[1]);
            if (index < 0 || index >= numOscillators)
                fail (line, "the oscillators are 0 to " + std::to_string (numOscillators - 1));
            const auto path = "Synth/Oscillators/OSC " + section[1] + "/";
            out.emplace_back (path + "Type", items.front());
            out.emplace_back (path + "Enable", "On");
            auto map = itemsOf (line, items, 1);
            take (map, "octave", path + "Octave", asIs);
            take (map, "tune", path + "Tune", asIs);
            take (map, "volume", path + "Volume", asDb);
            noneLeft (map);
        }
        else if (section[0] == "sub")
        {
            if (off)
            {
                out.emplace_back ("Synth/Sub/SubVolume", silentVolume);
                return;
            }
            auto map = itemsOf (line, items, 0);
            take (map, "octave", "Synth/Sub/SubOctave", asIs);
            take (map, "volume", "Synth/Sub/SubVolume", asDb);
            noneLeft (map);
        }
        else if (section[0] == "filter")
        {
            out.emplace_back ("Synth/Filter/Enable", off ? "Off" : "On");
            if (off)
                return;
            auto map = itemsOf (line, items, 0);
            take (map, "cutoff", "Synth/Filter/Cutoff", asIs);
            take (map, "resonance", "Synth/Filter/Resonance", asIs);
            take (map, "tracking", "Synth/Filter/KeyTracking", asIs);
            noneLeft (map);
        }
        else if (section[0] == "adsr")
        {
            const auto values = words (items.front());
            if (items.size() != 1 || values.size() != 4)
                fail (line, "adsr = <attack> <decay> <sustain> <release>");
            const char* keys[] = { "Attack", "Decay", "Sustain", "Release" };
            for (size_t i = 0; i < values.size(); ++i)
            {
                toReal (line, values[i]);
                out.emplace_back (std::string ("Synth/ADSR/") + keys[i], values[i]);
            }
        }
        else if (section[0] == "delay")
        {
            auto map = itemsOf (line, items, 0);
            const auto sync = map.find ("sync");
            const auto freeTime = map.find ("free");
            if ((sync == map.end()) == (freeTime == map.end()))
                fail (line, "a delay is either \"sync <note value>\" or \"free <seconds>\"");
            out.emplace_back ("Synth/Delay/Mode", sync != map.end() ? "Sync" : "Free");
            take (map, "sync", "Synth/Delay/TimeSync", asIs);
            take (map, "free", "Synth/Delay/Time", asIs);
            take (map, "feedback", "Synth/Delay/Feedback", asIs);
            take (map, "mix", "Synth/Delay/Mix", asIs);
            take (map, "analog", "Synth/Delay/Analog", asIs);
            noneLeft (map);
        }
        else if (section[0] == "unison")
        {
            out.emplace_back ("Unison", std::to_string (toInt (line, items.front())));
            auto map = itemsOf (line, items, 1);
            take (map, "amount", "UnisonAmount", asIs);
            noneLeft (map);
        }
        else
        {
            fail (line, "unknown section '" + section[0] + "'");
        }
    }
} // namespace

std::vector<PresetSpec> parsePatternPresets (std::istream& input)
{
    auto presets = readPresets (input, readPatternLine);
    for (const auto& preset : presets)
        if ((int) preset.patterns.size() != patternsPerPreset)
            fail (preset.line, preset.path + " has " + std::to_string (preset.patterns.size()) + " patterns, not "
                                   + std::to_string (patternsPerPreset));
    return presets;
}

std::vector<PresetSpec> parseSounds (std::istream& input)
{
    auto sounds = readPresets (input, readSoundLine);

    // A sound without a sub line has no sub: the tree's default would be a
    // loud one two octaves down, which no sound here wants by accident.
    for (auto& sound : sounds)
    {
        bool hasSub = false;
        for (const auto& setting : sound.settings)
            hasSub = hasSub || setting.first.rfind ("Synth/Sub/", 0) == 0;
        if (! hasSub)
            sound.settings.emplace_back ("Synth/Sub/SubVolume", silentVolume);
    }
    return sounds;
}
} // namespace Orv::Tools::Presets
