#include "core/TimerCallback.h"

#include "support/MessagePump.h"

#include <gtest/gtest.h>

namespace
{
using Orv::Events::TimerCallback;
using Orv::Testing::pumpMessagesFor;
using Orv::Testing::pumpMessagesUntil;

TEST (TimerCallback, CallsItsFunctionPeriodicallyUntilDestroyed)
{
    constexpr int periodMs = 10;
    int calls = 0;
    {
        TimerCallback timer ([&] { ++calls; }, periodMs);
        EXPECT_TRUE (pumpMessagesUntil ([&] { return calls >= 2; }));
    }

    const auto callsAtEnd = calls;
    pumpMessagesFor (5 * periodMs);
    EXPECT_EQ (calls, callsAtEnd);
}
} // namespace
