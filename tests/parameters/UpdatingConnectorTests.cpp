#include "ParameterTestDoubles.h"
#include "parameters/IntRef.h"
#include "parameters/UpdatingConnector.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

using namespace Orv;
using Orv::Parameters::Connector;
using Orv::Parameters::UpdatingConnector;
using Orv::Testing::CallLog;

namespace
{
/** A spy with a menu of three entries, behind a connector whose update logs
    itself and the spy's value and gesture state at that moment. */
struct Updated
{
    struct DiscreteSpy : Testing::ChainSpy
    {
        using ChainSpy::ChainSpy;
        bool isDiscrete() const override { return true; }
        int getNumChoices() const override { return 3; }
    };

    CallLog log;
    DiscreteSpy spy { log };
    UpdatingConnector connector { Connector::referringTo (spy), [this] {
                                     log.push_back ("update " + juce::String (spy.value).toStdString()
                                                    + (spy.isInGesture() ? " in gesture" : ""));
                                 } };
};
} // namespace

TEST (UpdatingConnector, EachSetterRunsTheUpdateOnceAfterTheTargetsWholeChain)
{
    const std::pair<std::function<void (Parameters::Parameter&)>, CallLog> cases[] = {
        { [] (auto& p) { p.setInt (1); }, { "setInt", "setFloat", "setNormalised", "setNormalisedNotifying", "update 1" } },
        { [] (auto& p) { p.setNormalised (0.1f); }, { "setNormalised", "setNormalisedNotifying", "update 0.1" } },
        { [] (auto& p) { p.setBool (true); }, { "setBool", "setNormalisedNotifying", "update 1" } },
        { [] (auto& p) { p.setFloat (0.3f); }, { "setFloat", "setNormalised", "setNormalisedNotifying", "update 0.3" } },
        { [] (auto& p) { p.setNormalisedNotifying (0.4f); }, { "setNormalisedNotifying", "update 0.4" } },
    };

    for (const auto& [set, expected] : cases)
    {
        Updated u;
        set (u.connector);
        EXPECT_EQ (u.log, expected);
    }
}

TEST (UpdatingConnector, MenuEntryRunsItsActionThenTheUpdateWithTheGestureClosed)
{
    Updated u;
    const auto menu = u.connector.getMenuChoices();
    ASSERT_EQ (menu.subItems.size(), 3u);

    menu.subItems[2].func();
    EXPECT_EQ (u.log, (CallLog { "beginGesture", "setInt", "setFloat", "setNormalised", "setNormalisedNotifying", "endGesture", "update 2" }));
}

TEST (UpdatingConnector, AMenuWithoutAFunctionIsAnErrorOfUseButTheSettersStayUsable)
{
    Updated u;
    UpdatingConnector c (Connector::referringTo (u.spy), {});
    EXPECT_THROW (c.getMenuChoices(), std::bad_function_call);
    c.setInt (1);
    EXPECT_FLOAT_EQ (u.spy.value, 1.0f);
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
