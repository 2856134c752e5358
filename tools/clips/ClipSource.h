#pragma once

#include <istream>
#include <string>
#include <vector>

namespace Orv::Tools::Clips
{
constexpr int ticksPerQuarter = 480;
constexpr int beatsPerBar = 4;
constexpr int ticksPerBar = ticksPerQuarter * beatsPerBar;

/** One sounding note, in ticks from the clip's start. */
struct ClipNote
{
    int pitch = 0;
    int velocity = 0;
    int start = 0;
    int length = 0;
};

/** A clip as its file will hold it: the file name without extension, its
    notes in the order written, and its length, a whole number of bars. */
struct Clip
{
    std::string name;
    std::vector<ClipNote> notes;
    int length = 0;
    int line = 0;
};

/** Reads a chord source (the format is described at the top of Clips.chords).
    Throws std::runtime_error naming the line for anything it does not
    understand or that would make a clip that does not loop cleanly in the
    middle register, so that a typo fails the build instead of playing a
    different chord. */
std::vector<Clip> parseClips (std::istream& input);
} // namespace Orv::Tools::Clips
