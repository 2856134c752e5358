#include "core/State.h"

#include "core/SharedTimer.h"

namespace Orv::Audio::Plugins::Halvane
{
namespace
{
    float valueOf (const juce::AudioProcessorParameter& parameter) { return parameter.getValue(); }
} // namespace

State::State()
    : lastSwing (valueOf (*transport.swing)),
      lastSwingRef (valueOf (*transport.swingRef)),
      swingListener (Events::SharedTimer::get().getBroadcaster(), [this] { rebuildIfSwingMoved(); })
{
}

State::~State() = default;

void State::rebuildIfSwingMoved()
{
    const auto swing = valueOf (*transport.swing);
    const auto swingRef = valueOf (*transport.swingRef);

    if (swing == lastSwing && swingRef == lastSwingRef)
        return;

    lastSwing = swing;
    lastSwingRef = swingRef;
    sequencer.rebuild();
}
} // namespace Orv::Audio::Plugins::Halvane
