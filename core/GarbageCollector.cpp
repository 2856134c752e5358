#include "core/GarbageCollector.h"

#include "core/Singleton.h"

#include <algorithm>

namespace Orv::Events
{
namespace
{
    // Below this the collector's own reference is the only one left.
    constexpr long minCountOfObjectInUse = 2;
} // namespace

GarbageCollector::GarbageCollector() : timer ([this] { collect(); }, collectPeriodMs) {}

GarbageCollector::~GarbageCollector() { timer.stopTimer(); }

GarbageCollector& GarbageCollector::get() { return *Singleton<GarbageCollector>::get(); }

void GarbageCollector::collect()
{
    std::vector<std::unique_ptr<RefCountBase>> unused;

    {
        const juce::ScopedLock sl (lock);

        const auto firstUnused = std::stable_partition (holders.begin(), holders.end(), [] (const auto& h) {
            return h->getReferenceCount() >= minCountOfObjectInUse;
        });

        unused.insert (unused.end(),
                       std::make_move_iterator (firstUnused),
                       std::make_move_iterator (holders.end()));
        holders.erase (firstUnused, holders.end());
    }

    // The objects die outside the lock, so that a destructor may hand the
    // collector objects of its own.
    unused.clear();
}

int GarbageCollector::getNumHeld() const
{
    const juce::ScopedLock sl (lock);
    return (int) holders.size();
}
} // namespace Orv::Events
