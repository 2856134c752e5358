#include "midi/DefaultMidiLearner.h"

#include "midi/ParamMidiCCHandler.h"

namespace Orv::Audio::Plugin
{
namespace
{
    constexpr uint8_t statusMask = 0xF0;
    constexpr uint8_t controllerStatus = 0xB0;
} // namespace

DefaultMidiLearner::~DefaultMidiLearner()
{
    if (state.learner != this)
        return;

    state.learner = nullptr;
    state.getBroadcaster().call();
}

void DefaultMidiLearner::startLearning (Orv::Parameters::Parameter& parameterToAssign)
{
    parameter = &parameterToAssign;

    if (state.learner != this)
    {
        state.learner = this;
        state.getBroadcaster().call();
    }

    arm();
}

bool DefaultMidiLearner::learn()
{
    if ((message.getRawData()[0] & statusMask) != controllerStatus)
        return false;

    // Arming always names a parameter; a learner put into capture some other
    // way has nothing to assign, and stops.
    if (parameter == nullptr)
        return true;

    const auto controller = message.getControllerNumber();
    state.addHandler (std::make_shared<ParamMidiCCHandler> (*parameter, controller));
    return true;
}
} // namespace Orv::Audio::Plugin
