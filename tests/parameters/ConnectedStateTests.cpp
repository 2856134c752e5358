#include "ParameterTestDoubles.h"
#include "parameters/ConnectedState.h"
#include "parameters/IntRef.h"

#include <gtest/gtest.h>

using namespace Orv;
using Orv::Parameters::ConnectedState;
using Orv::Parameters::Connector;
using Orv::Parameters::IntRef;

TEST (ConnectedState, IsOnOnlyWhileTheTargetHoldsTheOnValue)
{
    int mode = 0;
    IntRef<int> target (mode, 0.0f, 7.0f);
    ConnectedState state (Connector::referringTo (target), 3, 0);

    EXPECT_FLOAT_EQ (state.getNormalised(), 0.0f);

    mode = 3;
    EXPECT_FLOAT_EQ (state.getNormalised(), 1.0f);
    EXPECT_TRUE (state.getBool());

    mode = 5; // neither on nor off value
    EXPECT_FLOAT_EQ (state.getNormalised(), 0.0f);
}

TEST (ConnectedState, SwitchingWritesTheOnOrOffValueAndOneHalfIsOff)
{
    int mode = 5;
    IntRef<int> target (mode, 0.0f, 7.0f);
    ConnectedState state (Connector::referringTo (target), 3, 1);

    state.setNormalisedNotifying (0.51f);
    EXPECT_EQ (mode, 3);

    state.setNormalisedNotifying (0.5f);
    EXPECT_EQ (mode, 1);

    state.setBool (true);
    EXPECT_EQ (mode, 3);
}

TEST (ConnectedState, GesturesAndUndoAreTheTargets)
{
    struct Undoable : Testing::ChainSpy
    {
        using ChainSpy::ChainSpy;
        bool isUndoable() const override { return true; }
    };

    Testing::CallLog log;
    Undoable target (log);
    ConnectedState state (Connector::referringTo (target), 1, 0);

    EXPECT_TRUE (state.isUndoable());

    state.beginGesture();
    EXPECT_TRUE (target.isInGesture());
    EXPECT_TRUE (state.isInGesture());

    state.endGesture();
    EXPECT_FALSE (target.isInGesture());
    EXPECT_FALSE (state.isInGesture());
}
