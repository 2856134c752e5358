#include "persistence/PresetScreen.h"

#include "persistence/ReflectMembers.h"

namespace Orv::Presets
{
namespace
{
    struct Dimensions
    {
        Screen& screen;

        void reflect (Reflector& reflector)
        {
            addMember (reflector, "width", screen.width);
            addMember (reflector, "height", screen.height);
        }
    };
} // namespace

void Screen::reflect (Reflector& reflector)
{
    Dimensions dimensions { *this };
    reflector.addChild ("Dimensions", dimensions);

    if (reflector.isLoading())
        broadcaster.call();
}
} // namespace Orv::Presets
