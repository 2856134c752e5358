#include "tools/render/MidiTimeline.h"

#include "tools/render/RenderError.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace Orv::Tools::Render
{
namespace
{
    /** No MIDI file a person would give is anywhere near this; a wrong
        path to something huge is refused before it is read. */
    constexpr juce::int64 maxMidiFileBytes = 64 * 1024 * 1024;
    constexpr double microsecondsPerMinute = 60.0e6;

    /** Note-ons with their matching note-offs, in quarter notes, from a
        file whose time stamps are ticks. */
    struct ClipNote
    {
        int note;
        int velocity;
        double start;
        double end;
    };
} // namespace

MidiTimeline::MidiTimeline (double tempo, double rate, juce::int64 total)
    : bpm (tempo), sampleRate (rate), samplesPerQuarter (60.0 / tempo * rate), totalSamples (total)
{
}

juce::int64 MidiTimeline::sampleOfQuarter (double quarter) const
{
    return (juce::int64) std::llround (quarter * samplesPerQuarter);
}

double MidiTimeline::quarterOfSample (juce::int64 sample) const { return (double) sample / samplesPerQuarter; }

std::vector<TimedMessage> MidiTimeline::readInput (const juce::File& file) const
{
    const auto path = file.getFullPathName().toStdString();
    if (! file.existsAsFile())
        throw RenderError ("no MIDI file " + path);
    if (file.getSize() > maxMidiFileBytes)
        throw RenderError (path + " is too large to be a MIDI file");

    juce::FileInputStream in (file);
    juce::MidiFile midi;
    if (! in.openedOk())
        throw RenderError ("cannot read " + path);
    if (! midi.readFrom (in) || midi.getNumTracks() == 0)
        throw RenderError (path + " is not a MIDI file");

    const auto format = midi.getTimeFormat();
    if (format <= 0)
        midi.convertTimestampTicksToSeconds();

    std::vector<TimedMessage> events;
    for (int t = 0; t < midi.getNumTracks(); ++t)
        for (const auto* holder : *midi.getTrack (t))
        {
            const auto& message = holder->message;
            if (! (message.isNoteOnOrOff() || message.isController()))
                continue;
            const auto stamp = message.getTimeStamp();
            const auto sample = format > 0 ? sampleOfQuarter (stamp / format) : (juce::int64) std::llround (stamp * sampleRate);
            if (sample >= 0 && sample < totalSamples)
                events.push_back ({ message, sample });
        }

    // Tracks merged by time; within one time, file order.
    std::stable_sort (events.begin(), events.end(), [] (const TimedMessage& a, const TimedMessage& b) { return a.sample < b.sample; });
    return events;
}

std::vector<NoteSpan> MidiTimeline::clipNotes (const void* data, size_t size, int semitones) const
{
    juce::MemoryInputStream in (data, size, false);
    juce::MidiFile midi;
    if (! midi.readFrom (in) || midi.getTimeFormat() <= 0)
        return {};

    const auto ticks = (double) midi.getTimeFormat();
    std::vector<ClipNote> notes;
    double lastTime = 0.0;
    for (int t = 0; t < midi.getNumTracks(); ++t)
    {
        juce::MidiMessageSequence track (*midi.getTrack (t));
        track.updateMatchedPairs();
        if (track.getNumEvents() > 0)
            lastTime = std::max (lastTime, track.getEndTime() / ticks);
        for (const auto* e : track)
            if (e->message.isNoteOn())
            {
                const auto start = e->message.getTimeStamp() / ticks;
                const auto end = e->noteOffObject != nullptr ? e->noteOffObject->message.getTimeStamp() / ticks : start;
                notes.push_back ({ e->message.getNoteNumber(), e->message.getVelocity(), start, std::max (start, end) });
            }
    }

    // The player loops by whole bars of 4/4 that reach the last event.
    const auto loop = std::ceil (lastTime / quartersPerBar) * quartersPerBar;
    if (loop <= 0.0)
        return {};

    std::vector<NoteSpan> spans;
    const auto endQuarter = quarterOfSample (totalSamples);
    for (double offset = 0.0; offset < endQuarter; offset += loop)
        for (const auto& n : notes)
        {
            const auto start = sampleOfQuarter (offset + n.start);
            if (start >= totalSamples)
                continue;
            const auto note = juce::jlimit (0, 127, n.note + semitones);
            spans.push_back ({ note, n.velocity, start, std::min (totalSamples, sampleOfQuarter (offset + n.end)) });
        }

    std::stable_sort (spans.begin(), spans.end(), [] (const NoteSpan& a, const NoteSpan& b) { return a.start < b.start; });
    return spans;
}

std::vector<NoteSpan> MidiTimeline::spansOf (const std::vector<TimedMessage>& events) const
{
    std::vector<NoteSpan> spans;
    std::map<std::pair<int, int>, std::vector<size_t>> open; // channel and note to the spans still on

    for (const auto& e : events)
    {
        if (! e.message.isNoteOnOrOff())
            continue;
        const auto key = std::make_pair (e.message.getChannel(), e.message.getNoteNumber());
        if (e.message.isNoteOn())
        {
            open[key].push_back (spans.size());
            spans.push_back ({ e.message.getNoteNumber(), e.message.getVelocity(), e.sample, totalSamples });
        }
        else if (auto found = open.find (key); found != open.end() && ! found->second.empty())
        {
            spans[found->second.front()].end = e.sample;
            found->second.erase (found->second.begin());
        }
    }
    return spans;
}

void MidiTimeline::write (const std::vector<TimedMessage>& events, const juce::File& file) const
{
    const auto ticksOf = [this] (juce::int64 sample) {
        return (double) std::llround (quarterOfSample (sample) * ticksPerQuarter);
    };

    juce::MidiMessageSequence conductor;
    conductor.addEvent (juce::MidiMessage::textMetaEvent (3, "Halvane"), 0.0);
    conductor.addEvent (juce::MidiMessage::tempoMetaEvent ((int) std::llround (microsecondsPerMinute / bpm)), 0.0);
    conductor.addEvent (juce::MidiMessage::timeSignatureMetaEvent (quartersPerBar, 4), 0.0);
    conductor.addEvent (juce::MidiMessage::endOfTrack(), ticksOf (totalSamples));

    juce::MidiMessageSequence notes;
    notes.addEvent (juce::MidiMessage::textMetaEvent (3, "Arp"), 0.0);
    for (const auto& e : events)
        if (! e.message.isMetaEvent() && ! e.message.isSysEx())
        {
            // addEvent adds its argument to the message's own time stamp.
            auto message = e.message;
            message.setTimeStamp (ticksOf (e.sample));
            notes.addEvent (message);
        }
    notes.addEvent (juce::MidiMessage::endOfTrack(), ticksOf (totalSamples));

    juce::MidiFile midi;
    midi.setTicksPerQuarterNote (ticksPerQuarter);
    midi.addTrack (conductor);
    midi.addTrack (notes);

    const auto path = file.getFullPathName().toStdString();
    file.getParentDirectory().createDirectory();
    juce::TemporaryFile temp (file);
    {
        juce::FileOutputStream out (temp.getFile());
        if (! out.openedOk() || ! midi.writeTo (out, 1))
            throw RenderError ("cannot write " + path);
    }
    if (! temp.overwriteTargetFileWithTemporary())
        throw RenderError ("cannot write " + path);
}
} // namespace Orv::Tools::Render
