#include "MidiFileWriter.h"

#include <algorithm>
#include <tuple>

namespace Orv::Tools::Clips
{
namespace
{
    constexpr uint16_t singleTrackFormat = 0;
    constexpr uint16_t trackCount = 1;
    constexpr uint32_t headerLength = 6;

    constexpr uint8_t noteOnStatus = 0x90; // channel 1
    constexpr uint8_t noteOffStatus = 0x80;
    constexpr uint8_t releaseVelocity = 64; // "no release velocity" by convention

    constexpr uint8_t metaEvent = 0xff;
    constexpr uint8_t trackNameMeta = 0x03;
    constexpr uint8_t tempoMeta = 0x51;
    constexpr uint8_t timeSignatureMeta = 0x58;
    constexpr uint8_t endOfTrackMeta = 0x2f;

    constexpr uint32_t microsecondsPerQuarter = 500000; // 120 BPM
    // 4/4: numerator, denominator as a power of two, MIDI clocks per
    // metronome click, notated 32nd notes per quarter.
    constexpr uint8_t timeSignature[] = { 4, 2, 24, 8 };

    void putBigEndian (std::vector<uint8_t>& out, uint32_t value, int bytes)
    {
        for (int i = bytes - 1; i >= 0; --i)
            out.push_back (static_cast<uint8_t> ((value >> (8 * i)) & 0xff));
    }

    void putTag (std::vector<uint8_t>& out, const char* tag)
    {
        out.insert (out.end(), tag, tag + 4);
    }

    // Seven bits per byte, most significant first, the high bit set on every
    // byte but the last.
    void putVariableLength (std::vector<uint8_t>& out, uint32_t value)
    {
        uint8_t groups[5];
        int count = 0;
        do
        {
            groups[count++] = static_cast<uint8_t> (value & 0x7f);
            value >>= 7;
        } while (value != 0);

        while (count > 1)
            out.push_back (groups[--count] | 0x80);
        out.push_back (groups[0]);
    }

    void putMeta (std::vector<uint8_t>& out, uint8_t type, const std::vector<uint8_t>& data)
    {
        putVariableLength (out, 0);
        out.push_back (metaEvent);
        out.push_back (type);
        putVariableLength (out, static_cast<uint32_t> (data.size()));
        out.insert (out.end(), data.begin(), data.end());
    }

    struct NoteEvent
    {
        int tick;
        bool on;
        int pitch;
        int velocity;

        // A note that ends where the same note starts again must be released
        // first, or a reader pairs the new note-on with the old note's end.
        bool operator< (const NoteEvent& other) const
        {
            return std::make_tuple (tick, on, pitch) < std::make_tuple (other.tick, other.on, other.pitch);
        }
    };

    std::vector<uint8_t> trackOf (const Clip& clip)
    {
        std::vector<NoteEvent> events;
        for (const auto& note : clip.notes)
        {
            events.push_back ({ note.start, true, note.pitch, note.velocity });
            events.push_back ({ note.start + note.length, false, note.pitch, releaseVelocity });
        }
        std::stable_sort (events.begin(), events.end());

        std::vector<uint8_t> track;
        putMeta (track, trackNameMeta, std::vector<uint8_t> (clip.name.begin(), clip.name.end()));
        putMeta (track, timeSignatureMeta, std::vector<uint8_t> (std::begin (timeSignature), std::end (timeSignature)));
        std::vector<uint8_t> tempo;
        putBigEndian (tempo, microsecondsPerQuarter, 3);
        putMeta (track, tempoMeta, tempo);

        auto time = 0;
        for (const auto& event : events)
        {
            putVariableLength (track, static_cast<uint32_t> (event.tick - time));
            track.push_back (event.on ? noteOnStatus : noteOffStatus);
            track.push_back (static_cast<uint8_t> (event.pitch));
            track.push_back (static_cast<uint8_t> (event.velocity));
            time = event.tick;
        }

        putVariableLength (track, static_cast<uint32_t> (clip.length - time));
        track.push_back (metaEvent);
        track.push_back (endOfTrackMeta);
        track.push_back (0);
        return track;
    }
} // namespace

std::vector<uint8_t> writeMidiFile (const Clip& clip)
{
    const auto track = trackOf (clip);

    std::vector<uint8_t> out;
    putTag (out, "MThd");
    putBigEndian (out, headerLength, 4);
    putBigEndian (out, singleTrackFormat, 2);
    putBigEndian (out, trackCount, 2);
    putBigEndian (out, ticksPerQuarter, 2);

    putTag (out, "MTrk");
    putBigEndian (out, static_cast<uint32_t> (track.size()), 4);
    out.insert (out.end(), track.begin(), track.end());
    return out;
}
} // namespace Orv::Tools::Clips
