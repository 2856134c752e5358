#pragma once

#include "core/ProcessorBase.h"

#include <vector>

namespace Orv::Audio::Plugin
{
/** What all plug-ins of this family share above the framework: the list of
    parameters the host sees and the host's state calls. */
class SharedBase : public ProcessorBase
{
public:
    using ProcessorBase::ProcessorBase;

    /** Host thread: the whole state as one blob. */
    void getStateInformation (juce::MemoryBlock& destData) override;
    /** Host thread: restores a blob; a blob that does not load leaves the state
        as it was. */
    void setStateInformation (const void* data, int sizeInBytes) override;

protected:
    /** The parameters the host sees, in order; kept for the flat list of the
        state blob. */
    std::vector<juce::AudioProcessorParameter*> hostedParameters;
};
} // namespace Orv::Audio::Plugin
