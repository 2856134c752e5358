#include "parameters/ConnectedState.h"

namespace Orv::Parameters
{
ConnectedState::ConnectedState (const Connector& targetToUse, int onValueToUse, int offValueToUse)
    : target (targetToUse), onValue (onValueToUse), offValue (offValueToUse)
{
}

float ConnectedState::getNormalised() const { return target.getInt() == onValue ? 1.0f : 0.0f; }

void ConnectedState::setNormalisedNotifying (float normalised)
{
    target.setInt (normalised > boolThreshold ? onValue : offValue);
}

bool ConnectedState::isUndoable() const { return target.isUndoable(); }

bool ConnectedState::isInGesture() const { return target.isInGesture(); }

void ConnectedState::beginGesture() { target.beginGesture(); }

void ConnectedState::endGesture() { target.endGesture(); }
} // namespace Orv::Parameters
