#pragma once

#include "parameters/Connector.h"

namespace Orv::Parameters
{
/** Turns one value of an integer parameter into an on/off switch: on while
    the target holds the on value; switching on or off writes the on or off
    value. Gestures and undo are the target's. Message thread only. */
class ConnectedState : public Parameter
{
public:
    ConnectedState (const Connector& targetToUse, int onValueToUse, int offValueToUse);

    /** Message thread only: 1 while the target's integer is the on value. */
    float getNormalised() const override;

    /** Message thread only: writes the on value above one half, else the off value. */
    void setNormalisedNotifying (float normalised) override;

    /** Message thread only: forwarded to the target. */
    bool isUndoable() const override;
    bool isInGesture() const override;
    void beginGesture() override;
    void endGesture() override;

private:
    Connector target;
    int onValue;
    int offValue;
};
} // namespace Orv::Parameters
