#include "core/OctaveRange.h"

#include "persistence/ReflectMembers.h"

#include <algorithm>
#include <limits>

namespace Orv::Audio::Plugins::Halvane
{
OctaveRange::OctaveRange (ArpSettings& settingsToWrite) : settings (settingsToWrite) { publish(); }

void OctaveRange::setMin (std::int32_t m)
{
    min = m;
    // One below the largest int keeps the push from overflowing.
    max = std::max (max, std::min (m, std::numeric_limits<std::int32_t>::max() - 1) + 1);
    publish();
}

void OctaveRange::setMax (std::int32_t x)
{
    max = x;
    min = std::min (min, std::max (x, std::numeric_limits<std::int32_t>::min() + 1) - 1);
    publish();
}

void OctaveRange::reflect (Reflector& reflector)
{
    addMember (reflector, "Min", min);
    addMember (reflector, "Max", max);

    if (reflector.isLoading())
        publish();
}

void OctaveRange::publish() noexcept
{
    // Far-off numbers from a file must not overflow the notes they make;
    // beyond this every note of MIDI lies inside or outside the range anyway.
    static constexpr std::int64_t limit = 64;
    const auto toWord = [] (std::int32_t octave) {
        return (std::int32_t) std::clamp<std::int64_t> ((std::int64_t) octave + octaveOffset, -limit, limit);
    };
    settings.setOctaves (toWord (min), toWord (max));
}

void UIState::reflect (Reflector& reflector) { addMember (reflector, "snap", snap); }
} // namespace Orv::Audio::Plugins::Halvane
