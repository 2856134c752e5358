#pragma once

#include <istream>
#include <map>
#include <string>
#include <vector>

namespace Orv::Tools::Wavetables
{
/** One line of a wave's recipe: what to do ("saw", "lowpass", ...), its plain
    arguments in order and its named ones ("poles 4"). */
struct Operation
{
    std::string kind;
    std::vector<std::string> arguments;
    std::map<std::string, double> named;
    int line = 0;

    /** The plain argument at index as a number; throws with the line when it
        is missing or not a number. */
    double number (size_t index) const;

    /** A named argument, or the fallback when the line does not give it. */
    double get (const std::string& key, double fallback) const;

    /** Throws unless every named argument is one of these. */
    void allowOnly (const std::vector<std::string>& keys) const;

    /** An error that names the line. */
    [[noreturn]] void fail (const std::string& message) const;
};

/** A whole wave: its file name without extension, its file format and the
    operations that make its single period, in order. */
struct Recipe
{
    std::string name;
    int channels = 2;
    int sampleRate = 192000;
    int frames = 2048;
    /** The highest partial kept; 0 takes the most the length allows, up to
        defaultHarmonics. */
    int harmonics = 0;
    std::vector<Operation> operations;
    int line = 0;

    static constexpr int defaultHarmonics = 512;

    /** The band limit in effect for this wave. */
    int getHarmonicLimit() const;
};

/** Reads a recipe file. Throws std::runtime_error naming the line for anything
    it does not understand, so that a typo fails the build instead of making a
    different sound. */
std::vector<Recipe> parseRecipes (std::istream& input);
} // namespace Orv::Tools::Wavetables
