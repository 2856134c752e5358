#pragma once

#include "core/RefCountBase.h"

#include <memory>

namespace Orv::Events
{
/** Keeps one shared pointer for the GarbageCollector. */
template <typename T>
class RefCountedHolder : public RefCountBase
{
public:
    explicit RefCountedHolder (std::shared_ptr<T> objectToHold) : object (std::move (objectToHold)) {}

    /** The use count of the held pointer; 1 when only this holder is left. */
    long getReferenceCount() const override { return object.use_count(); }

private:
    std::shared_ptr<T> object;
};
} // namespace Orv::Events
