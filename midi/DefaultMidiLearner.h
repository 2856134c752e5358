#pragma once

#include "midi/LearnState.h"
#include "midi/LearnerInterface.h"
#include "parameters/Parameter.h"

namespace Orv::Audio::Plugin
{
/** Learns controllers for parameters: armed for one parameter, the next
    controller that arrives drives it from then on. Message thread only, but
    for what LearnerInterface gives the audio thread. */
class DefaultMidiLearner : public Orv::Midi::Learn::LearnerInterface
{
public:
    /** Message thread. The state must outlive the learner. */
    explicit DefaultMidiLearner (Orv::Midi::Learn::State& stateToUse) : state (stateToUse) {}

    /** Message thread: withdraws from the state if it is in force there. */
    ~DefaultMidiLearner() override;

    /** Message thread: the next controller is to drive this parameter. Puts
        the learner in force in the state, then arms it. */
    void startLearning (Orv::Parameters::Parameter& parameterToAssign);

    /** Message thread: only controllers can be learned; anything else leaves
        the learner armed. A controller becomes a handler for the parameter,
        beside any it already has. */
    bool learn() override;

    /** Message thread: the parameter that is being assigned, if any. */
    Orv::Parameters::Parameter* getParameter() const noexcept { return parameter; }

private:
    Orv::Midi::Learn::State& state;
    Orv::Parameters::Parameter* parameter = nullptr;
};
} // namespace Orv::Audio::Plugin
