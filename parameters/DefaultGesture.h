#pragma once

#include "parameters/Parameter.h"

#include <cstdint>

namespace Orv::Parameters
{
/** Gesture bookkeeping for parameters over plain memory: one byte that says
    whether a user's change is under way. No host is told. The byte is not
    atomic: message thread only. */
class DefaultGesture : public Parameter
{
public:
    /** Message thread only. */
    bool isInGesture() const override { return gesture != 0; }

    /** Message thread only. */
    void beginGesture() override { gesture = 1; }

    /** Message thread only. */
    void endGesture() override { gesture = 0; }

private:
    std::uint8_t gesture = 0;
};
} // namespace Orv::Parameters
