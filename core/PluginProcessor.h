#pragma once

#include "core/PluginBase.h"

namespace Orv::Audio::Plugin
{
/** The layer that presents the state's parameters to the host. */
template <typename StateType>
class Processor : public Base<StateType>
{
public:
    using Base<StateType>::Base;
};
} // namespace Orv::Audio::Plugin
