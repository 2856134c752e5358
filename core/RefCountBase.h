#pragma once

namespace Orv::Events
{
/** Something the GarbageCollector holds, whose users it can count. */
class RefCountBase
{
public:
    virtual ~RefCountBase() = default;

    /** How many owners the held object has, the holder itself included. */
    virtual long getReferenceCount() const = 0;
};
} // namespace Orv::Events
