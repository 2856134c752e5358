#pragma once

#include "parameters/DefaultAtomic.h"

#include <atomic>
#include <cstdint>

namespace Orv::Parameters
{
/** An on/off switch over an atomic byte that someone else owns and that the
    audio thread may read or write at the same time. Reads are plain atomic
    loads, writes are exchanges. Everything else comes from the defaults, so
    it has no menu. */
class AtomicBool : public DefaultAtomic
{
public:
    /** The byte must outlive every Connector to this parameter. */
    explicit AtomicBool (std::atomic<std::uint8_t>& flagToUse) : flag (&flagToUse) {}

    /** Any thread: 1 when bit 0 of the byte is set, else 0. */
    float getNormalised() const override;

    /** Any thread: stores whether the value is above one half; one half
        itself is off. */
    void setNormalisedNotifying (float normalised) override;

private:
    std::atomic<std::uint8_t>* flag;
};
} // namespace Orv::Parameters
