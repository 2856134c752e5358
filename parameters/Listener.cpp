#include "parameters/Listener.h"

#include "core/SharedTimer.h"

namespace Orv::Parameters
{
Listener::Listener (const Connector& parameterToWatch, CallbackFunc onChangeToUse, bool callNow)
    : parameter (parameterToWatch),
      onChange (std::move (onChangeToUse)),
      lastSeen (parameter.getNormalised()),
      timerListener ([this] { tick(); })
{
    Events::SharedTimer::attach (timerListener);

    if (callNow)
        onChange();
}

Listener::~Listener() { timerListener.detach(); }

void Listener::tick()
{
    const auto value = parameter.getNormalised();

    // Neither less nor greater, rather than ==, so that NaN counts as unmoved.
    if (! (value < lastSeen) && ! (value > lastSeen))
        return;

    // Read again: the value stored is the one at the moment of the call.
    lastSeen = parameter.getNormalised();
    onChange();
}
} // namespace Orv::Parameters
