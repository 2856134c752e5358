#pragma once

#include "sequencer/PlayHead.h"

#include <memory>

namespace Orv::Sequencer
{
/** A sequence's own play head: each new object, copies included, gets a
    fresh one, so that two copies never report into the same head. Assigning
    keeps the head the object already has.

    Message thread only (making a head allocates). */
class OwnPlayHead
{
public:
    OwnPlayHead() : head (PlayHead::create()) {}
    OwnPlayHead (const OwnPlayHead&) : OwnPlayHead() {}
    OwnPlayHead& operator= (const OwnPlayHead&) noexcept { return *this; }

    const std::shared_ptr<PlayHead>& get() const noexcept { return head; }

private:
    std::shared_ptr<PlayHead> head;
};
} // namespace Orv::Sequencer
