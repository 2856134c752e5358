#pragma once

#include <istream>
#include <string>
#include <utility>
#include <vector>

namespace Orv::Tools::Presets
{
/** The rows a factory pattern may use: a loaded pattern keeps no others. */
constexpr int lowestRow = 58;
constexpr int highestRow = 69;
constexpr float defaultVelocity = 0.8f;
constexpr float accentVelocity = 1.0f;
constexpr float softVelocity = 0.5f;

/** A key path in a parameter tree ("Synth/Filter/Cutoff") and the text it
    is given, in the parameter's own display form or a number. */
using Setting = std::pair<std::string, std::string>;

/** One step, its times as fractions of the pattern. */
struct StepSpec
{
    double start = 0.0;
    double length = 0.0;
    int row = 0;
    float velocity = defaultVelocity;
};

struct BarSpec
{
    int num = 4;
    int denum = 4;
};

/** One of the eight patterns of a preset. */
struct PatternSpec
{
    std::vector<BarSpec> bars;
    int grid = 1;
    bool multiply = false;
    std::vector<StepSpec> steps;
};

/** A file of either kind: its path under the factory folder without the
    extension ("Basic/Up Eighths"), its fixed "id", and its content. */
struct PresetSpec
{
    std::string path;
    std::string id;
    int line = 0;
    /** Pattern presets: the parameters the preset carries; none gives a
        file whose "Params" is null. Sounds: the settings of the tree. */
    std::vector<Setting> settings;
    std::vector<PatternSpec> patterns;
};

/** Reads a pattern source (the format is described at the top of
    Patterns.presets). Throws std::runtime_error naming the line for anything
    it does not understand, a row a load would drop, or a preset without
    exactly eight patterns. */
std::vector<PresetSpec> parsePatternPresets (std::istream& input);

/** Reads a sound source (the format is described at the top of
    Sounds.sounds) into key paths and texts. Throws std::runtime_error naming
    the line for anything it does not understand. */
std::vector<PresetSpec> parseSounds (std::istream& input);
} // namespace Orv::Tools::Presets
