#pragma once

#include "parameters/Parameter.h"

#include <cstdint>

namespace Orv::Parameters
{
/** Gesture bookkeeping for parameters over atomics. The value may be shared
    with the audio thread, the gesture is not: it is a plain byte that only
    the message thread touches. No host is told. */
class DefaultAtomic : public Parameter
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
