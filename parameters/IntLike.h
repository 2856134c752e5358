#pragma once

#include "parameters/DefaultGesture.h"

namespace Orv::Parameters
{
/** The base of every parameter that moves in integer steps, so that code
    which cares can recognise one by type. It adds no operations. */
class IntLike : public DefaultGesture
{
};
} // namespace Orv::Parameters
