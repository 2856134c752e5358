#pragma once

#include <memory>
#include <vector>

namespace Orv
{
/** The owner of one heap object that is a persistent member. Deletes through
    the pointer's type, so a polymorphic base needs a virtual destructor. */
template <typename T>
using OwningPointer = std::unique_ptr<T>;

/** A sequence of owned persistent members, in order. */
template <typename T>
using OwnedVector = std::vector<OwningPointer<T>>;
} // namespace Orv
