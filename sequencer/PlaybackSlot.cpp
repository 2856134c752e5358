#include "sequencer/PlaybackSlot.h"

#include "persistence/ReflectMembers.h"

#include <algorithm>

namespace Orv::Sequencer
{
namespace
{
    /** A note's end is bent by the same curve as its start, so a note may
        grow or shrink, but never below nothing. */
    template <typename Records>
    void bend (Records& records, SwingPair swing)
    {
        for (auto& record : records)
        {
            const auto start = swungTime (swing.middle, swing.period, record.time.start);
            const auto end = swungTime (swing.middle, swing.period, record.time.start + record.time.length);
            record.time = { start, std::max (end - start, 0.0) };
        }
    }
} // namespace

void PlaybackSlot::update (SwingPair swing)
{
    if (! playing)
    {
        events.clearLists();
        return;
    }

    PatternData result;
    clip.evaluate (result);

    bend (result.notes, swing);
    bend (result.heads, swing);
    bend (result.extra, swing);

    events = std::move (result);
    length = events.length;
}

void PlaybackSlot::reflect (Reflector& reflector)
{
    reflector.addChild ("Clip", clip);
    addMember (reflector, "playing", playing);
    addMember (reflector, "looping", looping);
}
} // namespace Orv::Sequencer
