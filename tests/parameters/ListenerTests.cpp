#include "ParameterTestDoubles.h"
#include "core/SharedTimer.h"
#include "parameters/Listener.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

using namespace Orv;
using Orv::Parameters::Connector;

namespace
{
void tick() { Events::SharedTimer::get().tick(); }

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

struct Watched
{
    explicit Watched (float initial) { spy.value = initial; }

    void listen (bool callNow) { listener.emplace (Connector::referringTo (spy), [this] { ++calls; }, callNow); }

    /** Sets the values in turn within one tick, then ticks; the calls since the last look. */
    int callsAfter (std::initializer_list<float> values)
    {
        for (auto v : values)
            spy.value = v;
        tick();
        return std::exchange (calls, 0);
    }

    Testing::CallLog log;
    Testing::ChainSpy spy { log };
    int calls = 0;
    std::optional<Parameters::Listener> listener;
};
} // namespace

TEST (ParameterListener, FiresOncePerExactMoveOnTheNextTick)
{
    Watched w (0.5f);
    w.listen (false);

    EXPECT_EQ (w.callsAfter ({}), 0) << "an unmoved value";
    EXPECT_EQ (w.callsAfter ({ 0.6f }), 1);
    EXPECT_EQ (w.callsAfter ({}), 0) << "once per move, not per tick";
    EXPECT_EQ (w.callsAfter ({ std::nextafter (0.6f, 1.0f) }), 1) << "the comparison is exact";
    EXPECT_EQ (w.callsAfter ({ 0.9f, std::nextafter (0.6f, 1.0f) }), 0) << "a move and back within a tick";
    EXPECT_EQ (w.callsAfter ({ notANumber }), 0);
    EXPECT_EQ (w.callsAfter ({ notANumber }), 0);

    w.listener.reset();
    EXPECT_EQ (w.callsAfter ({ 0.8f }), 0) << "a destroyed listener";
}

TEST (ParameterListener, CallNowFiresOnceAtConstructionAndAStartFromNaNNever)
{
    Watched w (0.4f);
    w.listen (true);
    EXPECT_EQ (w.calls, 1);
    w.calls = 0;
    EXPECT_EQ (w.callsAfter ({}), 0);

    Watched fromNaN (notANumber);
    fromNaN.listen (false);
    EXPECT_EQ (fromNaN.callsAfter ({}), 0);
}
