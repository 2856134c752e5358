#include "ParameterTestDoubles.h"
#include "parameters/IntRef.h"
#include "parameters/UpdatingConnector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>

using namespace Orv;
using Orv::Parameters::Connector;
using Orv::Parameters::UpdatingConnector;
using Orv::Testing::CallLog;
using Orv::Testing::ChainSpy;

namespace
{
struct ChainedTarget
{
    CallLog log;
    ChainSpy spy { log };
    int updates = 0;
    UpdatingConnector connector { Connector::referringTo (spy), [this] {
                                     ++updates;
                                     log.push_back ("update");
                                 } };
};

/** A ChainSpy with a menu of three entries. */
class DiscreteSpy : public ChainSpy
{
public:
    using ChainSpy::ChainSpy;
    bool isDiscrete() const override { return true; }
    int getNumChoices() const override { return 3; }
};
} // namespace

TEST (UpdatingConnector, SetIntRunsTheFunctionOnceAfterTheWholeChainOfTheTarget)
{
    ChainedTarget t;

    t.connector.setInt (1);

    EXPECT_EQ (t.updates, 1);
    EXPECT_EQ (t.log, (CallLog { "setInt", "setFloat", "setNormalised", "setNormalisedNotifying", "update" }));
}

TEST (UpdatingConnector, EachSetterRunsTheFunctionExactlyOnceAfterTheChange)
{
    ChainedTarget t;
    float seenInUpdate = -1.0f;
    UpdatingConnector c (Connector::referringTo (t.spy), [&] {
        ++t.updates;
        seenInUpdate = t.spy.value;
    });

    c.setNormalised (0.1f);
    EXPECT_EQ (t.updates, 1);
    EXPECT_FLOAT_EQ (seenInUpdate, 0.1f);

    c.setBool (true);
    EXPECT_EQ (t.updates, 2);
    EXPECT_FLOAT_EQ (seenInUpdate, 1.0f);

    c.setFloat (0.3f);
    EXPECT_EQ (t.updates, 3);
    EXPECT_FLOAT_EQ (seenInUpdate, 0.3f);

    c.setNormalisedNotifying (0.4f);
    EXPECT_EQ (t.updates, 4);
    EXPECT_FLOAT_EQ (seenInUpdate, 0.4f);
}

TEST (UpdatingConnector, MenuEntryRunsItsActionThenTheUpdateWithTheGestureClosed)
{
    CallLog log;
    DiscreteSpy spy (log);
    bool gestureOpenDuringUpdate = true;
    float valueDuringUpdate = -1.0f;
    UpdatingConnector c (Connector::referringTo (spy), [&] {
        log.push_back ("update");
        gestureOpenDuringUpdate = spy.isInGesture();
        valueDuringUpdate = spy.value;
    });

    const auto menu = c.getMenuChoices();
    ASSERT_EQ (menu.subItems.size(), 3u);
    log.clear();

    menu.subItems[2].func();

    ASSERT_FALSE (log.empty());
    EXPECT_EQ (log.front(), "beginGesture");
    EXPECT_EQ (log[log.size() - 2], "endGesture");
    EXPECT_EQ (log.back(), "update");
    EXPECT_EQ (std::count (log.begin(), log.end(), "update"), 1);
    EXPECT_FALSE (gestureOpenDuringUpdate);
    EXPECT_FLOAT_EQ (valueDuringUpdate, 2.0f);
}

TEST (UpdatingConnector, MenuWithoutAFunctionIsAnErrorOfUse)
{
    CallLog log;
    DiscreteSpy spy (log);
    UpdatingConnector c (Connector::referringTo (spy), {});

    EXPECT_THROW (c.getMenuChoices(), std::bad_function_call);

    // The setters stay usable without one.
    EXPECT_NO_THROW (c.setInt (1));
    EXPECT_FLOAT_EQ (spy.value, 1.0f);
}

TEST (UpdatingConnector, OwnsTheTargetWhenCopiedFromAnOwningConnector)
{
    int value = 3;
    int updates = 0;
    std::optional<UpdatingConnector> c;
    {
        Connector owning (new Parameters::IntRef<int> (value, 0.0f, 7.0f));
        c.emplace (owning, [&updates] { ++updates; });
    }

    c->setInt (9);

    EXPECT_EQ (value, 0);
    EXPECT_EQ (updates, 1);
}
