#pragma once

#include "midi/SustainPedalProcessor.h"

namespace Orv::Midi::SustainPedal
{
/** A pedal stage that keeps its pedal state itself, starting up. */
class SimpleProcessor : public Processor
{
public:
    /** Any thread, before use. */
    SimpleProcessor() : Processor (pedalDown) {}

private:
    // Only its address is taken before it is built; the base never reads it
    // in its constructor.
    std::atomic<bool> pedalDown { false };
};
} // namespace Orv::Midi::SustainPedal
