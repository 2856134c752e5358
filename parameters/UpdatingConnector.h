#pragma once

#include "parameters/Connector.h"

namespace Orv::Parameters
{
/** A connector that runs a function after every change made through it, for
    views that must refresh something the target knows nothing of. The
    function runs once per call here, after the target has finished, however
    many of its own setters the target chains through. */
class UpdatingConnector : public Connector
{
public:
    /** Copies the connector by the usual rule and the function. */
    UpdatingConnector (const Connector& connector, CallbackFunc onUpdateToUse);

    /** Message thread only: the target's setter, then the function. */
    void setNormalised (float normalised) override;
    void setInt (int value) override;
    void setBool (bool value) override;
    void setFloat (float value) override;
    void setNormalisedNotifying (float normalised) override;

    /** Message thread only: the target's menu, with every entry made to run
        the function after its own action, so that a choice from a menu
        updates too. Without a function this is an error of use and throws
        std::bad_function_call. */
    MenuItems::Item getMenuChoices() override;

private:
    CallbackFunc onUpdate;
};
} // namespace Orv::Parameters
