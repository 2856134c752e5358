#include "sequencer/PitchMapRing.h"

namespace Orv::Audio::Plugins::Halvane
{
void PitchMapRing::publish (const ChordMap& map) noexcept
{
    // As in GUIToRealTime::push: skip the held entry before writing, so that
    // the entry just before writeIndex is always the newest complete one.
    auto index = writeIndex.load();
    if (index == readIndex.load())
        index = next (index);

    auto& entry = entries[(size_t) index];
    entry.table = map.getTable();
    entry.range = map.getRange();
    entry.sortedNotes = map.getSortedNotes();

    writeIndex.store (next (index));
    counter.fetch_add (1);
}

const PitchMapRing::Entry& PitchMapRing::read() noexcept
{
    const auto newest = writeIndex.load();
    const auto r = newest == 0 ? numEntries - 1 : newest - 1;
    readIndex.store (r);
    return entries[(size_t) r];
}
} // namespace Orv::Audio::Plugins::Halvane
