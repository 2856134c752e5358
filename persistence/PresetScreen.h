#pragma once

#include "core/Broadcaster.h"
#include "persistence/Reflector.h"

#include <cstdint>

namespace Orv::Presets
{
/** The window's size as an instance remembers it; -1 until a window has
    been open. Message thread. */
class Screen
{
public:
    virtual ~Screen() = default;

    virtual bool isHostResizable() const { return true; }
    virtual bool keepsAspect() const { return true; }
    virtual bool hasLimits() const { return true; }
    virtual bool usesDefaultCorner() const { return true; }
    /** A window size in pixels. */
    struct Size
    {
        int width = 0;
        int height = 0;
    };

    virtual Size getDefaultSize() const { return { 800, 600 }; }
    virtual Size getMinimumSize() const { return { getDefaultSize().width / 2, getDefaultSize().height / 2 }; }
    /** 0 by 0: no limit. */
    virtual Size getMaximumSize() const { return {}; }

    /** "Dimensions" with "width" and "height". */
    void reflect (Reflector& reflector);

    std::int32_t width = -1;
    std::int32_t height = -1;
    float scale = 1.0f;
    Events::Broadcaster broadcaster;
};
} // namespace Orv::Presets
