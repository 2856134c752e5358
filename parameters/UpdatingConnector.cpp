#include "parameters/UpdatingConnector.h"

#include <functional>

namespace Orv::Parameters
{
UpdatingConnector::UpdatingConnector (const Connector& connector, CallbackFunc onUpdateToUse)
    : Connector (connector), onUpdate (std::move (onUpdateToUse))
{
}

void UpdatingConnector::setNormalised (float normalised)
{
    Connector::setNormalised (normalised);
    onUpdate();
}

void UpdatingConnector::setInt (int value)
{
    Connector::setInt (value);
    onUpdate();
}

void UpdatingConnector::setBool (bool value)
{
    Connector::setBool (value);
    onUpdate();
}

void UpdatingConnector::setFloat (float value)
{
    Connector::setFloat (value);
    onUpdate();
}

void UpdatingConnector::setNormalisedNotifying (float normalised)
{
    Connector::setNormalisedNotifying (normalised);
    onUpdate();
}

MenuItems::Item UpdatingConnector::getMenuChoices()
{
    auto menu = Connector::getMenuChoices();

    // A menu whose entries silently skip the update would leave the view
    // stale with no sign of why; the setters above stay lenient.
    if (onUpdate.isEmpty())
        throw std::bad_function_call();

    setRecursiveFunc (menu, onUpdate);
    return menu;
}
} // namespace Orv::Parameters
