#include "core/SharedTimer.h"

#include "core/Singleton.h"

namespace Orv::Events
{
SharedTimer::SharedTimer() { startTimer (periodMs); }

SharedTimer::~SharedTimer() { stopTimer(); }

SharedTimer& SharedTimer::get() { return *Singleton<SharedTimer>::get(); }
} // namespace Orv::Events
