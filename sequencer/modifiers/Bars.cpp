#include "sequencer/modifiers/Bars.h"

#include "persistence/ChildContainerSerializer.h"

namespace Orv::Sequencer::Modifiers
{
void Bars::reflect (Reflector& node)
{
    ChildContainerSerializer<std::vector<Bar>> (time.bars, "Bars", "Bar").reflect (node);

    if (node.isLoading())
        time.barsBroadcaster.call();
}
} // namespace Orv::Sequencer::Modifiers
