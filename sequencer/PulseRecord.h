#pragma once

#include "sequencer/PlayHead.h"

#include <cstdint>
#include <memory>

namespace Orv::Sequencer
{
/** A trigger pulse, carried in a pattern's `extra` list where other lists
    carry play heads. When the pattern runs past its start it fires once,
    asking for `slot` to be started; whoever arms it sets `fired` back to
    false.

    Every record of an `extra` list points at a PulseRecord: the scheduler
    relies on that when it reads the pulse behind a record. Nothing but the
    slot timer puts records there.

    `slot` and `fired` belong to the audio thread. */
class PulseRecord : public PlayHead
{
public:
    /** Any thread but the audio thread (it allocates): a new pulse, already
        registered with the garbage collector. */
    static std::shared_ptr<PulseRecord> create();

    int32_t slot = 0;
    bool fired = true;
};
} // namespace Orv::Sequencer
