#pragma once

namespace Orv::Events::ValueListenerDetails
{
/** Common base of the listeners that poll a value on the SharedTimer's tick, so
    that an owner can keep listeners of different value types in one list. */
class Base
{
public:
    Base() = default;
    virtual ~Base() = default;

    Base (const Base&) = delete;
    Base& operator= (const Base&) = delete;
};
} // namespace Orv::Events::ValueListenerDetails
