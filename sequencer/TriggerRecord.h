#pragma once

#include <cstdint>

namespace Orv::Sequencer
{
/** A pulse that fired during a run: which slot it asks for, at which sample
    of the run, and at which pattern time the pulse stands. A plain value. */
struct TriggerRecord
{
    int32_t slot = 0;
    int32_t sampleOffset = 0;
    double time = 0.0;
};
} // namespace Orv::Sequencer
