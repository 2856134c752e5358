#pragma once

#include "core/PluginSharedBase.h"

#include <memory>

namespace Orv::Audio::Plugin
{
/** Makes the plug-in's state object and owns it for the instance's life. */
template <typename StateType>
class Base : public SharedBase
{
public:
    Base (const juce::String& pluginName, const BusesProperties& buses)
        : SharedBase (pluginName, buses), state (std::make_unique<StateType>())
    {
        this->presetState = state.get();
    }

    ~Base() override { this->presetState = nullptr; }

    /** Any thread: the instance's state; it outlives every editor. */
    StateType& getState() noexcept { return *state; }

protected:
    std::unique_ptr<StateType> state;
};
} // namespace Orv::Audio::Plugin
