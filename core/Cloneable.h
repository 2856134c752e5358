#pragma once

#include <memory>

namespace Orv
{
/** The interface of a class hierarchy whose objects can copy themselves
    without the caller knowing their type. */
template <typename Interface>
class CloneableInterface
{
public:
    virtual ~CloneableInterface() = default;

    /** A new deep copy that the caller owns. Same thread as the object's other use. */
    virtual std::unique_ptr<Interface> clone() const = 0;
};

/** Gives a concrete class its clone() through its own copy constructor. */
template <typename Interface, typename Self>
class Cloneable : public Interface
{
public:
    using Interface::Interface;

    std::unique_ptr<Interface> clone() const override
    {
        return std::make_unique<Self> (static_cast<const Self&> (*this));
    }
};
} // namespace Orv
