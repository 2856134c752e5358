#pragma once

#include "core/CallbackFunc.h"

#include <juce_events/juce_events.h>

namespace Orv::Events
{
/** A timer that calls a function, for the few things that need a period of
    their own rather than the SharedTimer's tick. Runs on the message thread. */
class TimerCallback : public juce::Timer
{
public:
    /** Any thread: starts at once when the period is positive. */
    explicit TimerCallback (CallbackFunc callbackToUse = {}, int periodMs = 0);
    ~TimerCallback() override;

    /** Message thread: the function to call from now on. */
    void setCallback (CallbackFunc newCallback) { callback = std::move (newCallback); }

private:
    void timerCallback() override { callback(); }

    CallbackFunc callback;
};
} // namespace Orv::Events
