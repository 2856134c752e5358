#pragma once

#include "core/Broadcaster.h"
#include "parameters/Connector.h"

namespace Orv::Parameters
{
/** Watches a parameter by polling it on the shared timer and calls a
    function when its normalised value has moved. The comparison is exact,
    with no tolerance; a value that is NaN never compares as moved, so it
    fires nothing. A value that moves and comes back within one tick is not
    seen. Message thread only. */
class Listener
{
public:
    /** Message thread only: registers with the shared timer and takes the
        present value as the last one seen; with callNow the function also
        runs once here. */
    Listener (const Connector& parameterToWatch, CallbackFunc onChangeToUse, bool callNow);

    /** Message thread only: leaves the shared timer before the connector goes. */
    ~Listener();

    Listener (const Listener&) = delete;
    Listener& operator= (const Listener&) = delete;

private:
    void tick();

    Connector parameter;
    CallbackFunc onChange;
    float lastSeen;

    // Last, so that it is gone before the members the tick uses.
    Events::Listener timerListener;
};
} // namespace Orv::Parameters
