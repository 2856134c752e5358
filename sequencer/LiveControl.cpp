#include "sequencer/LiveControl.h"

#include "persistence/ReflectMembers.h"

#include <algorithm>

namespace Orv::Sequencer
{
namespace
{
    /** An atomic through a plain copy: written as it stands, stored only when
        a value arrived. */
    template <typename T>
    void reflectAtomic (Reflector& reflector, const std::string& key, std::atomic<T>& word)
    {
        T value = word.load();

        if (addMember (reflector, key, value) && reflector.isLoading())
            word.store (value);
    }

    constexpr std::int32_t firstPattern = 0;
} // namespace

void LiveControl::reflect (Reflector& reflector)
{
    reflectAtomic (reflector, "active", active);
    reflectAtomic (reflector, "enable", enable);
    reflectAtomic (reflector, "quantize", quantize);

    if (reflector.isLoading())
        active.store (std::max (active.load(), firstPattern));
}
} // namespace Orv::Sequencer
