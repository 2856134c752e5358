#include "sequencer/PlayHead.h"

#include "core/GarbageCollector.h"

namespace Orv::Sequencer
{
std::shared_ptr<PlayHead> PlayHead::create()
{
    auto head = std::make_shared<PlayHead>();
    Events::GarbageCollector::get().add (head);
    return head;
}
} // namespace Orv::Sequencer
