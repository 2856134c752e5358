#include "core/TimerCallback.h"

namespace Orv::Events
{
TimerCallback::TimerCallback (CallbackFunc callbackToUse, int periodMs)
    : callback (std::move (callbackToUse))
{
    if (periodMs > 0)
        startTimer (periodMs);
}

TimerCallback::~TimerCallback() { stopTimer(); }
} // namespace Orv::Events
