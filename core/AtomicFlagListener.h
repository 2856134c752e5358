#pragma once

#include "core/AtomicListener.h"

namespace Orv::Events
{
/** An AtomicListener of a bool: the callback runs on the tick after the flag
    was set or cleared. Message thread only. */
class AtomicFlagListener : public AtomicListener<bool>
{
public:
    using AtomicListener<bool>::AtomicListener;
};
} // namespace Orv::Events
