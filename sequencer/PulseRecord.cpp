#include "sequencer/PulseRecord.h"

#include "core/GarbageCollector.h"

namespace Orv::Sequencer
{
std::shared_ptr<PulseRecord> PulseRecord::create()
{
    auto pulse = std::make_shared<PulseRecord>();
    Events::GarbageCollector::get().add (pulse);
    return pulse;
}
} // namespace Orv::Sequencer
