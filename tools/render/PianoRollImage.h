#pragma once

#include "tools/render/MidiTimeline.h"

#include <juce_graphics/juce_graphics.h>

#include <vector>

namespace Orv::Tools::Render
{
/** A picture of a render: the output notes over the held chords on a piano
    roll with its bar lines, and the waveform in a strip below. Drawn into an
    image, never a window; needs the GUI initialised for its fonts. */
class PianoRollImage
{
public:
    static constexpr int width = 1600;
    static constexpr int rollHeight = 520;
    static constexpr int waveHeight = 140;
    static constexpr int margin = 24;
    /** Room on the left for the octave names. */
    static constexpr int labelWidth = 40;

    /** Columns of the plot, one per pixel: what the waveform should hold. */
    static constexpr int plotColumns() { return width - labelWidth - 2 * margin; }

    /** `waveform` holds a magnitude per column across the width. */
    static juce::Image draw (const MidiTimeline& timeline, const std::vector<NoteSpan>& chords,
                             const std::vector<NoteSpan>& notes, const std::vector<float>& waveform);

    /** Writes the image as PNG. Throws RenderError when it cannot. */
    static void write (const juce::Image& image, const juce::File& file);
};
} // namespace Orv::Tools::Render
