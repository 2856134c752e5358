#pragma once

#include "core/Broadcaster.h"
#include "sequencer/ArpSettings.h"
#include "sequencer/LivePatterns.h"
#include "sequencer/PitchMapRing.h"
#include "sequencer/TransportControl.h"

#include <atomic>

namespace Orv::Audio::Plugins::Halvane
{
/** Everything an instance keeps. The Processor owns it; the editor holds
    references into it, so closing the window loses nothing. Made and
    destroyed on the message thread; the audio thread reads only atomics
    here, and writes the level, the pitch-map ring and the transport's and
    live control's words. */
class State
{
public:
    /** Message thread: the eight patterns, already rebuilt into slots. */
    State();
    ~State();

    State (const State&) = delete;
    State& operator= (const State&) = delete;

    /** The eight patterns, their slots and the keyswitch queue. */
    LivePatterns sequencer;
    /** The one transport of the instance: the patterns' own. */
    Sequencer::TransportControl& transport { sequencer.transport };

    /** What the note path reads on every span. */
    ArpSettings arp;
    /** The arp's row-to-note table, for the display. */
    PitchMapRing pitchMap;

    /** Output level of the last block, for the meter. Written by the audio
        thread. */
    std::atomic<float> level { 0.0f };
    /** Number of meters watching `level`; the block measures only when
        someone looks. */
    std::atomic<int> levelListeners { 0 };
    /** True while the MIDI file player drives the arp in place of the keys. */
    std::atomic<bool> filePlayerActive { false };

private:
    void rebuildIfSwingMoved();

    // The swing parameters may move from the host's thread; the slots are
    // rebuilt from the shared tick instead, on the message thread.
    float lastSwing = 0.0f;
    float lastSwingRef = 0.0f;
    Events::Listener swingListener;
};
} // namespace Orv::Audio::Plugins::Halvane
