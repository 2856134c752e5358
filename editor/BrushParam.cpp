#include "editor/BrushParam.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace Orv::Audio::Plugins::Halvane
{
namespace
{
    const char* const brushNames[] = { "Cursor", "Pencil", "Velocity" };
} // namespace

BrushParam::BrushParam (UIState& stateToUse, KeyQuery query)
    : state (stateToUse), velocityKeyHeld (query ? std::move (query) : KeyQuery (&BrushParam::isVelocityKeyHeld))
{
}

bool BrushParam::isVelocityKeyHeld()
{
    const auto modifiers = juce::ModifierKeys::getCurrentModifiersRealtime();
    if (modifiers.isShiftDown() || modifiers.isCtrlDown() || modifiers.isAltDown())
        return false;
    return juce::KeyPress::isKeyCurrentlyDown (velocityKey);
}

int BrushParam::getInt() const
{
    return velocityKeyHeld() ? (int) UIState::velocity : juce::jlimit (0, numBrushes - 1, (int) state.brush);
}

void BrushParam::setInt (int value) { state.brush = juce::jlimit (0, numBrushes - 1, value); }

void BrushParam::setNormalisedNotifying (float normalised)
{
    setInt (juce::roundToInt (juce::jlimit (0.0f, 1.0f, normalised) * (numBrushes - 1)));
}

juce::String BrushParam::getTextForInt (int index) const
{
    return brushNames[juce::jlimit (0, numBrushes - 1, index)];
}

juce::String BrushParam::getTextFor (float normalised) const
{
    return getTextForInt (juce::roundToInt (juce::jlimit (0.0f, 1.0f, normalised) * (numBrushes - 1)));
}
} // namespace Orv::Audio::Plugins::Halvane
