#include "ParameterTestDoubles.h"
#include "core/SharedTimer.h"
#include "parameters/Listener.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

using namespace Orv;
using Orv::Parameters::Connector;
using Orv::Testing::CallLog;
using Orv::Testing::ChainSpy;

namespace
{
void tick() { Events::SharedTimer::get().tick(); }

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

struct Watched
{
    CallLog log;
    ChainSpy spy { log };
    int calls = 0;

    Parameters::Listener makeListener (bool callNow)
    {
        return Parameters::Listener (Connector::referringTo (spy), [this] { ++calls; }, callNow);
    }
};
} // namespace

TEST (ParameterListener, WithoutCallNowTheFirstTickOfAnUnmovedValueFiresNothing)
{
    Watched w;
    w.spy.value = 0.4f;
    auto listener = w.makeListener (false);

    tick();

    EXPECT_EQ (w.calls, 0);
}

TEST (ParameterListener, CallNowFiresOnceAtConstructionAndNotAgainUntilAMove)
{
    Watched w;
    auto listener = w.makeListener (true);
    EXPECT_EQ (w.calls, 1);

    tick();
    EXPECT_EQ (w.calls, 1);
}

TEST (ParameterListener, FiresOncePerMoveNotOncePerTick)
{
    Watched w;
    auto listener = w.makeListener (false);

    w.spy.value = 0.6f;
    tick();
    EXPECT_EQ (w.calls, 1);

    tick();
    tick();
    EXPECT_EQ (w.calls, 1);

    w.spy.value = 0.2f;
    tick();
    EXPECT_EQ (w.calls, 2);
}

TEST (ParameterListener, TheSmallestMoveCountsBecauseTheComparisonIsExact)
{
    Watched w;
    w.spy.value = 0.5f;
    auto listener = w.makeListener (false);

    w.spy.value = std::nextafter (0.5f, 1.0f);
    tick();

    EXPECT_EQ (w.calls, 1);
}

TEST (ParameterListener, AMoveAndBackWithinOneTickIsNotSeen)
{
    Watched w;
    w.spy.value = 0.5f;
    auto listener = w.makeListener (false);

    w.spy.value = 0.9f;
    w.spy.value = 0.5f;
    tick();

    EXPECT_EQ (w.calls, 0);
}

TEST (ParameterListener, NaNNeverFires)
{
    Watched w;
    w.spy.value = 0.3f;
    auto listener = w.makeListener (false);

    w.spy.value = notANumber;
    tick();
    tick();
    EXPECT_EQ (w.calls, 0);

    Watched fromNaN;
    fromNaN.spy.value = notANumber;
    auto second = fromNaN.makeListener (false);
    tick();
    EXPECT_EQ (fromNaN.calls, 0);
}

TEST (ParameterListener, StopsListeningWhenDestroyed)
{
    Watched w;
    std::optional<Parameters::Listener> listener;
    listener.emplace (Connector::referringTo (w.spy), [&w] { ++w.calls; }, false);

    listener.reset();
    w.spy.value = 0.8f;
    tick();

    EXPECT_EQ (w.calls, 0);
}
