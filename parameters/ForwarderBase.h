#pragma once

#include "parameters/Parameter.h"

namespace Orv::Parameters
{
/** A GUI parameter that presents another object: the base of the forwarders
    over JUCE parameters. The forwarded object outlives the forwarder. */
template <typename Forwarded>
class ForwarderBase : public Parameter
{
public:
    explicit ForwarderBase (Forwarded& forwardedToUse) : forwarded (&forwardedToUse) {}

    /** Any thread. */
    Forwarded& getForwarded() const noexcept { return *forwarded; }

protected:
    Forwarded* const forwarded;
};
} // namespace Orv::Parameters
