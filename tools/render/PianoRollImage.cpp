#include "tools/render/PianoRollImage.h"

#include "tools/render/RenderError.h"

#include <algorithm>
#include <cmath>

namespace Orv::Tools::Render
{
namespace
{
    constexpr int minSemitonesShown = 24;
    constexpr int paddingSemitones = 2;
    constexpr int gap = 12;
    constexpr int titleHeight = 18;

    const juce::Colour background { 0xff16181d };
    const juce::Colour blackKeyRow { 0xff1c1f25 };
    const juce::Colour octaveLine { 0xff2c313a };
    const juce::Colour beatLine { 0xff23272e };
    const juce::Colour barLine { 0xff59606d };
    const juce::Colour chordFill { 0x559fb8d8 };
    const juce::Colour noteFill { 0xfff0a030 };
    const juce::Colour noteEdge { 0xff7a4a08 };
    const juce::Colour waveFill { 0xff5fb7a0 };
    const juce::Colour text { 0xffa8b0bc };

    bool isBlackKey (int note)
    {
        const auto pc = note % 12;
        return pc == 1 || pc == 3 || pc == 6 || pc == 8 || pc == 10;
    }
} // namespace

juce::Image PianoRollImage::draw (const MidiTimeline& timeline, const std::vector<NoteSpan>& chords,
                                  const std::vector<NoteSpan>& notes, const std::vector<float>& waveform)
{
    const int height = margin + titleHeight + rollHeight + gap + waveHeight + margin;
    juce::Image image (juce::Image::ARGB, width, height, true);
    juce::Graphics g (image);
    g.fillAll (background);

    const juce::Rectangle<float> roll ((float) (margin + labelWidth), (float) (margin + titleHeight),
                                       (float) plotColumns(), (float) rollHeight);
    const juce::Rectangle<float> wave (roll.getX(), roll.getBottom() + gap, roll.getWidth(), (float) waveHeight);

    // The pitch range: every note drawn, with a little room, never so narrow
    // that a single chord fills the picture.
    int low = 127, high = 0;
    for (const auto* list : { &chords, &notes })
        for (const auto& n : *list)
        {
            low = std::min (low, n.note);
            high = std::max (high, n.note);
        }
    if (low > high)
        low = high = 60;
    low = std::max (0, low - paddingSemitones);
    high = std::min (127, high + paddingSemitones);
    while (high - low + 1 < minSemitonesShown)
    {
        low = std::max (0, low - 1);
        high = std::min (127, high + 1);
    }

    const auto rows = high - low + 1;
    const auto rowHeight = roll.getHeight() / (float) rows;
    const auto total = (double) std::max<juce::int64> (1, timeline.getTotalSamples());
    const auto xOf = [&] (juce::int64 sample) { return roll.getX() + (float) ((double) sample / total * roll.getWidth()); };
    const auto yOf = [&] (int note) { return roll.getBottom() - (float) (note - low + 1) * rowHeight; };

    g.setFont (juce::Font (11.0f));
    for (int note = low; note <= high; ++note)
    {
        if (isBlackKey (note))
        {
            g.setColour (blackKeyRow);
            g.fillRect (roll.getX(), yOf (note), roll.getWidth(), rowHeight);
        }
        if (note % 12 == 0)
        {
            g.setColour (octaveLine);
            g.drawHorizontalLine ((int) std::round (yOf (note) + rowHeight), roll.getX(), roll.getRight());
            g.setColour (text);
            g.drawText ("C" + juce::String (note / 12 - 1), juce::Rectangle<float> ((float) margin, yOf (note), (float) labelWidth - 4.0f, rowHeight).expanded (0.0f, 4.0f),
                        juce::Justification::centredRight);
        }
    }

    // Beats faintly, bars clearly, with their numbers above the roll.
    const auto samplesPerBar = timeline.getSamplesPerBar();
    const auto samplesPerBeat = samplesPerBar / MidiTimeline::quartersPerBar;
    const auto beats = (int) std::ceil (total / samplesPerBeat);
    for (int beat = 0; beat <= beats; ++beat)
    {
        const auto x = (int) std::round (xOf ((juce::int64) std::llround (beat * samplesPerBeat)));
        const bool bar = beat % MidiTimeline::quartersPerBar == 0;
        g.setColour (bar ? barLine : beatLine);
        g.drawVerticalLine (x, roll.getY(), roll.getBottom());
        g.drawVerticalLine (x, wave.getY(), wave.getBottom());
        if (bar && beat < beats)
        {
            g.setColour (text);
            g.drawText (juce::String (beat / MidiTimeline::quartersPerBar + 1), x + 3, margin, 40, titleHeight,
                        juce::Justification::centredLeft);
        }
    }

    const auto spanRect = [&] (const NoteSpan& n) {
        const auto x = xOf (n.start);
        return juce::Rectangle<float> (x, yOf (n.note), std::max (1.5f, xOf (n.end) - x), rowHeight);
    };

    g.setColour (chordFill);
    for (const auto& n : chords)
        g.fillRect (spanRect (n));

    for (const auto& n : notes)
    {
        const auto r = spanRect (n).reduced (0.0f, rowHeight > 4.0f ? 0.5f : 0.0f);
        g.setColour (noteFill.withMultipliedBrightness (0.55f + 0.45f * (float) n.velocity / 127.0f));
        g.fillRect (r);
        if (r.getWidth() > 3.0f)
        {
            g.setColour (noteEdge);
            g.drawRect (r, 1.0f);
        }
    }

    // The waveform: the largest magnitude per pixel, mirrored about the
    // middle, on a decibel-free linear scale as an editor draws it.
    g.setColour (octaveLine);
    g.drawHorizontalLine ((int) wave.getCentreY(), wave.getX(), wave.getRight());
    g.setColour (waveFill);
    const auto columns = std::min<size_t> (waveform.size(), (size_t) wave.getWidth());
    for (size_t i = 0; i < columns; ++i)
    {
        const auto h = std::min (1.0f, waveform[i]) * wave.getHeight() * 0.5f;
        if (h > 0.0f)
            g.fillRect (wave.getX() + (float) i, wave.getCentreY() - h, 1.0f, std::max (1.0f, 2.0f * h));
    }
    g.setColour (barLine);
    g.drawRect (roll);
    g.drawRect (wave);

    return image;
}

void PianoRollImage::write (const juce::Image& image, const juce::File& file)
{
    const auto path = file.getFullPathName().toStdString();
    file.getParentDirectory().createDirectory();
    juce::TemporaryFile temp (file);
    {
        juce::FileOutputStream out (temp.getFile());
        juce::PNGImageFormat png;
        if (! out.openedOk() || ! png.writeImageToStream (image, out))
            throw RenderError ("cannot write " + path);
    }
    if (! temp.overwriteTargetFileWithTemporary())
        throw RenderError ("cannot write " + path);
}
} // namespace Orv::Tools::Render
