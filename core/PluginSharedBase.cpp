#include "core/PluginSharedBase.h"

namespace Orv::Audio::Plugin
{
void SharedBase::getStateInformation (juce::MemoryBlock& destData)
{
    // The state blob arrives with the state object; until then there is
    // nothing of ours worth keeping.
    destData.reset();
}

void SharedBase::setStateInformation (const void*, int) {}
} // namespace Orv::Audio::Plugin
