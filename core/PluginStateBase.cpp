#include "core/PluginStateBase.h"

namespace Orv::Audio::Plugin
{
StateBase::StateBase() : screen (std::make_unique<Presets::Screen>()) {}

StateBase::~StateBase() = default;

void StateBase::reflectInstance (Reflector& reflector)
{
    if (reflector.context.isInstanceScope())
        reflector.addChild ("Screen", *screen);

    if (auto* params = getParams())
        reflector.addChild ("Params", *params);
}
} // namespace Orv::Audio::Plugin
