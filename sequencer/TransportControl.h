#pragma once

#include <atomic>
#include <cstdint>

namespace Orv::Sequencer
{
/** The transport as the GUI and the block share it. Every field is an atomic
    word: the block writes where the clock stands, the GUI reads it, and the GUI
    may move the internal clock by writing the position and sample time. */
class TransportControl
{
public:
    static constexpr float defaultTempo = 100.0f;

    /** Tempo in beats per minute: the internal clock's, or the host's last. */
    std::atomic<float> tempo { defaultTempo };
    /** True while the internal clock runs, or while the host plays. */
    std::atomic<bool> running { false };
    /** Position in quarter notes at the end of the last block. */
    std::atomic<double> position { 0.0 };
    /** Time in samples at the end of the last block. */
    std::atomic<int64_t> sampleTime { 0 };
    /** Runs the sequencer on the internal clock even while the host plays. */
    std::atomic<bool> forceInternalClock { false };
};
} // namespace Orv::Sequencer
