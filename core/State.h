#pragma once

#include "sequencer/TransportControl.h"

#include <atomic>

namespace Orv::Audio::Plugins::Halvane
{
/** Everything an instance keeps. The Processor owns it; the editor holds
    references into it, so closing the window loses nothing. */
class State
{
public:
    State() = default;

    Sequencer::TransportControl transport;

    /** Output level of the last block, for the meter. Written by the audio
        thread. */
    std::atomic<float> level { 0.0f };
    /** Number of meters watching `level`; the block measures only when
        someone looks. */
    std::atomic<int> levelListeners { 0 };
    /** True while the MIDI file player drives the arp in place of the keys. */
    std::atomic<bool> filePlayerActive { false };
};
} // namespace Orv::Audio::Plugins::Halvane
