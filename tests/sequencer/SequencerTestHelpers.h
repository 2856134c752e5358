#pragma once

#include "core/Broadcaster.h"
#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "sequencer/TimedEvent.h"
#include "sequencer/modifiers/MusicalTime.h"

#include <string>
#include <vector>

namespace Orv::Testing
{
/** Writes a tag into a shared log each time its broadcaster calls, so that a
    test sees who was told, how often and in which order. */
class BroadcastLog
{
public:
    BroadcastLog (Events::Broadcaster& broadcaster, std::string tagToUse, std::vector<std::string>& logToUse)
        : listener (broadcaster, [this] { log.push_back (tag); }), tag (std::move (tagToUse)), log (logToUse)
    {
    }

private:
    Events::Listener listener;
    std::string tag;
    std::vector<std::string>& log;
};

/** An enabled step on a row, with times as given. */
inline Sequencer::Step makeStep (double start, double length, int noteNum = 64)
{
    Sequencer::Step step;
    step.time = { start, length };
    step.event.noteNum = noteNum;
    step.enabled = true;
    return step;
}

/** The spans of steps, notes or heads, in list order. */
template <typename Records>
std::vector<Ranges::Span<double>> spansOf (const Records& records)
{
    std::vector<Ranges::Span<double>> spans;
    for (const auto& r : records)
        spans.push_back (r.time);
    return spans;
}

/** A time of the given bars. */
inline Sequencer::Modifiers::MusicalTime barsOf (std::vector<Sequencer::Modifiers::Bar> bars)
{
    Sequencer::Modifiers::MusicalTime time;
    time.bars = std::move (bars);
    return time;
}

/** The object as a preset file would hold it. */
template <typename Object>
nlohmann::json save (Object& object)
{
    return Json::toJson (object, ReflectContext::forPreset());
}

/** Reads the JSON into the object; the JSON may grow while it is read. */
template <typename Object>
void load (nlohmann::json json, Object& object)
{
    Json::fromJson (json, object, ReflectContext::forPreset());
}

/** Saves the source and loads the result into a default object. */
template <typename Object>
Object roundTrip (Object& source)
{
    Object copy;
    load (save (source), copy);
    return copy;
}
} // namespace Orv::Testing
