#include "sequencer/modifiers/Duration.h"

#include "persistence/ReflectMembers.h"

#include <stdexcept>

namespace Orv::Sequencer::Modifiers
{
namespace
{
    constexpr int decimalBase = 10;
    // What the parent's bare "duration" reads as when an old file has none.
    constexpr double absentLegacyDuration = -1.0;

    const char* const invalidModeTextMessage = "invalid stol argument";
    const char* const modeTextOutOfRangeMessage = "stol argument out of range";

    /** Unlike other integers, a mode that is text and no number fails the
        load instead of reading as 0. */
    void reflectMode (Reflector& reflector, std::int32_t& mode)
    {
        if (reflector.isLoading())
        {
            const auto value = reflector.getValue ("mode");

            if (value.getTag() == ReflectedValue::Tag::text)
            {
                long parsed = 0;

                try
                {
                    parsed = std::stol (value.getText(), nullptr, decimalBase);
                }
                catch (const std::invalid_argument&)
                {
                    throw std::invalid_argument (invalidModeTextMessage);
                }
                catch (const std::out_of_range&)
                {
                    throw std::out_of_range (modeTextOutOfRangeMessage);
                }

                mode = static_cast<std::int32_t> (parsed);
                return;
            }
        }

        addMember (reflector, "mode", mode);
    }
} // namespace

double Duration::getLength() const noexcept
{
    return mode == barsMode ? time.getLength() : duration;
}

void Duration::reflect (Reflector& reflector)
{
    reflector.addChild ("Time", time);
    addMember (reflector, "duration", duration);
    reflectMode (reflector, mode);
}

void Duration::reflectIn (Reflector& parent, Duration& duration)
{
    if (parent.isLoading())
    {
        auto legacy = absentLegacyDuration;
        addMember (parent, "duration", legacy);

        if (! (legacy < 0.0))
        {
            duration.duration = legacy;
            duration.mode = explicitMode;
            return;
        }
    }

    parent.addChild ("Duration", duration);
}
} // namespace Orv::Sequencer::Modifiers
