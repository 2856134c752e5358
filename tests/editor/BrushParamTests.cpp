#include "editor/BrushParam.h"

#include <gtest/gtest.h>

using Orv::Audio::Plugins::Halvane::BrushParam;
using Orv::Audio::Plugins::Halvane::UIState;

TEST (BrushParam, TheVelocityKeySpringsTheBrushToVelocityOnlyWhileHeld)
{
    UIState ui;
    bool held = false;
    BrushParam brush (ui, [&] { return held; });

    brush.setInt (UIState::pencil);
    EXPECT_EQ (ui.brush, UIState::pencil);
    EXPECT_EQ (brush.getText(), "Pencil");

    held = true;
    EXPECT_EQ (brush.getInt(), UIState::velocity);
    EXPECT_EQ (brush.getText(), "Velocity");
    EXPECT_FLOAT_EQ (brush.getNormalised(), 1.0f);
    EXPECT_EQ (ui.brush, UIState::pencil) << "holding the key chooses nothing";

    // A choice made while the key is held is what comes back on release.
    brush.setNormalisedNotifying (0.0f);
    held = false;
    EXPECT_EQ (brush.getInt(), UIState::cursor);
    EXPECT_EQ (brush.getText(), "Cursor");

    // Out-of-range values land on the nearest brush.
    brush.setInt (9);
    EXPECT_EQ (ui.brush, UIState::velocity);
    brush.setNormalisedNotifying (0.4f);
    EXPECT_EQ (ui.brush, UIState::pencil);
    EXPECT_EQ (brush.getTextFor (-3.0f), "Cursor");
}
