#include "sequencer/modifiers/EventsContainer.h"

#include "persistence/ChildContainerSerializer.h"

#include <cmath>

namespace Orv::Sequencer::Modifiers
{
EventsContainer::EventsContainer (const EventsContainer& other) : Cloneable<Base, EventsContainer> (other), loopTime (other.loopTime)
{
    for (const auto& t : other.tracks)
        tracks.push_back (std::make_unique<TimedSteps> (*t));
}

EventsContainer& EventsContainer::operator= (const EventsContainer& other)
{
    if (this != &other)
    {
        EventsContainer copy (other);
        Base::operator= (other);
        tracks = std::move (copy.tracks);
        loopTime = other.loopTime;
    }

    return *this;
}

void EventsContainer::evaluate (PatternData& result) const
{
    const auto loopLength = loopTime.getLength();

    std::vector<size_t> soloed;

    for (size_t i = 0; i < tracks.size(); ++i)
        if (tracks[i]->solo)
            soloed.push_back (i);

    if (soloed.empty())
    {
        for (size_t i = 0; i < tracks.size(); ++i)
            renderTrack (i, loopLength, result);
    }
    else
    {
        for (auto i : soloed)
            renderTrack (i, loopLength, result);
    }

    result.start = 0.0;
    result.length = loopLength;
}

void EventsContainer::renderTrack (size_t index, double loopLength, PatternData& result) const
{
    PatternData local;

    // A track that does not move time forward, a loop without end (a zero
    // denominator in a file) or a tiny track under a huge loop would repeat
    // for ever, or for long enough to hang the host: repetitions are capped
    // far beyond any musical use.
    if (loopLength > 0.0 && std::isfinite (loopLength))
    {
        int repetitions = 0;
        for (double t = 0.0; t < loopLength && repetitions < maxRepetitionsPerTrack; ++repetitions)
        {
            PatternData repetition;
            tracks[index]->evaluate (repetition);

            const auto next = t + repetition.length;
            if (! (next > t))
                break;

            repetition.shift (t);
            local.append (repetition);
            t = next;
        }
    }

    // Track 0 keeps the channel its TimedSteps gave it.
    if (index > 0)
        for (auto& note : local.notes)
            note.event.channel = static_cast<std::int32_t> (index);

    const auto insideLoop = [loopLength] (const auto& r) { return r.time.start >= 0.0 && r.time.start < loopLength; };

    for (const auto& note : local.notes)
        if (insideLoop (note))
            result.notes.push_back (note);

    for (const auto& head : local.heads)
        if (insideLoop (head))
            result.heads.push_back (head);
}

void EventsContainer::reflectMembers (Reflector& reflector)
{
    ChildContainerSerializer<OwnedVector<TimedSteps>> (tracks, "Sequences", "Sequence").add (reflector);
    reflector.addChild ("LoopTime", loopTime);
}
} // namespace Orv::Sequencer::Modifiers
