#include "core/UpdateTimer.h"

#include "core/SharedTimer.h"

namespace Orv::Events
{
UpdateTimer::UpdateTimer (CallbackFunc callbackToUse, int32_t initialValue, bool callNow)
    : counter (initialValue),
      lastSeen (initialValue),
      callback (std::move (callbackToUse)),
      listener (SharedTimer::get().getBroadcaster(), [this] { poll(); })
{
    if (callNow)
        callback();
}

void UpdateTimer::poll()
{
    const auto now = counter.load();

    if (now != lastSeen)
    {
        lastSeen = now;
        callback();
    }
}
} // namespace Orv::Events
