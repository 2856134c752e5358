#include "core/SharedTimer.h"

#include "support/MessagePump.h"

#include <gtest/gtest.h>

namespace
{
using Orv::Events::Listener;
using Orv::Events::SharedTimer;
using Orv::Testing::pumpMessagesUntil;

TEST (SharedTimer, IsOneInstanceWhoseTickCallsEveryAttachedListener)
{
    EXPECT_EQ (&SharedTimer::get(), &SharedTimer::get());

    int a = 0, b = 0;
    Listener la ([&] { ++a; });
    Listener lb ([&] { ++b; });
    SharedTimer::attach (la);
    SharedTimer::attach (lb);

    SharedTimer::get().tick();
    EXPECT_EQ (a, 1);
    EXPECT_EQ (b, 1);
}

TEST (SharedTimer, TicksByItselfWhileTheMessageLoopRuns)
{
    int ticks = 0;
    Listener l ([&] { ++ticks; });
    SharedTimer::attach (l);

    EXPECT_TRUE (pumpMessagesUntil ([&] { return ticks >= 2; }));
}
} // namespace
