#pragma once

#include "parameters/ParamHolder.h"
#include "sequencer/BPMParameter.h"
#include "sequencer/Swing.h"
#include "sequencer/SwingParam.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <cstdint>

namespace Orv
{
class Reflector;
}

namespace Orv::Sequencer
{
/** The transport as the GUI and the block share it, and the tempo and swing
    that a pattern preset keeps under "Transport".

    The clock's fields are atomic words: the block writes where the clock
    stands, the GUI reads it, and the GUI may move the internal clock by
    writing the position and sample time. The swing parameters are read on
    the message thread only, when the slots are rebuilt. */
class TransportControl
{
public:
    /** Message thread. */
    TransportControl();
    ~TransportControl();

    /** "BPM" as {"value": text}, then "Swing" and "SwingRef" each as
        {"Value": text}. A load sets the swing parameters without telling
        their listeners; whoever runs the load rebuilds. Message thread. */
    void reflect (Reflector& reflector);

    /** Message thread: the swing curve that the present swing settings give. */
    SwingPair swingPair() const;

    /** The tempo of the internal clock, which the block also overwrites with
        the host's tempo whenever the host gives one. */
    BPMParameter bpm;
    /** The swing amount and the note value of its period; the state's
        parameter list hands them to the host. */
    Audio::ParamHolder<SwingParam> swing;
    Audio::ParamHolder<juce::AudioParameterChoice> swingRef;

    /** Tempo in beats per minute: the internal clock's, or the host's last.
        The same word as the BPM parameter's. */
    std::atomic<float>& tempo { bpm.getAtomic() };
    /** True while the internal clock runs, or while the host plays. */
    std::atomic<bool> running { false };
    /** Position in quarter notes at the end of the last block. */
    std::atomic<double> position { 0.0 };
    /** Time in samples at the end of the last block. */
    std::atomic<int64_t> sampleTime { 0 };
    /** Runs the sequencer on the internal clock even while the host plays. */
    std::atomic<bool> forceInternalClock { false };

    JUCE_DECLARE_NON_COPYABLE (TransportControl)
};
} // namespace Orv::Sequencer
