#pragma once

#include "core/PluginBase.h"

namespace Orv::Audio::Plugin
{
/** The layer that presents the state's parameters to the host: the state's
    hosted list becomes this processor's parameters, in its order. */
template <typename StateType>
class Processor : public Base<StateType>
{
public:
    /** Message thread. */
    Processor (const juce::String& pluginName, const juce::AudioProcessor::BusesProperties& buses)
        : Base<StateType> (pluginName, buses)
    {
        auto& hosted = this->state->getHostedParams();
        hosted.attach (this);

        for (const auto& holder : hosted.ownedHolders)
            this->hostedParameters.push_back (holder->getParameter());
    }

    /** Message thread. The fronts listen to the state's parameters, and the
        state goes before the framework's own tree would: the fronts go
        first. */
    ~Processor() override
    {
        this->hostedParameters.clear();
        this->setParameterTree ({});
    }
};
} // namespace Orv::Audio::Plugin
