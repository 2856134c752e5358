#pragma once

#include "core/GUIToRealTime.h"
#include "core/InternalPlayHead.h"
#include "core/PlayHeadTransportView.h"
#include "core/PluginProcessor.h"
#include "core/State.h"
#include "midi/NoteMessage.h"
#include "midi/LearnState.h"
#include "sequencer/LiveSlots.h"
#include "sequencer/MidiProcessor.h"
#include "sequencer/NoteGate.h"
#include "synth/OutputChain.h"
#include "synth/Synth.h"

#include <vector>

namespace Orv::Audio::Plugins::Halvane
{
/** The object the host calls on its audio thread. It owns no musical logic:
    each stage of the block is a call into the part that owns it, and this class
    fixes their order. */
class Processor : public Orv::Audio::Plugin::Processor<State>
{
public:
    /** Room of every MIDI buffer on the block path, so that ordinary blocks
        never grow one. */
    static constexpr size_t midiBufferBytes = Midi::NoteMessage::bufferBytes;

    Processor();
    ~Processor() override;

    //==============================================================================
    /** Host thread, never during a block. */
    void prepareToPlay (double sampleRate, int samplesPerBlock) override;
    /** Audio thread; never blocks, never allocates in an ordinary block. */
    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    using Orv::Audio::Plugin::Processor<State>::processBlock;

    //==============================================================================
    /** Message thread: the handlers and learner the block offers events to.
        Call `publishLearnState()` after changing them. */
    Midi::Learn::State& getLearnState() noexcept { return learnSource; }
    /** Message thread: hands the current learn state to the audio thread. */
    void publishLearnState();

    /** Audio thread reads, tests inspect: the block's clock. */
    const InternalPlayHead& getInternalPlayHead() const noexcept { return internalPlayHead; }

    /** Audio thread only; tests inspect: the note path. */
    MidiProcessor& getMidiProcessor() noexcept { return midiProcessor; }

    /** Audio thread only; tests inspect: the instrument behind the arp. */
    WavetableSynth::Synth& getSynth() noexcept { return synth; }

private:
    //==============================================================================
    // The stages of one block, in their binding order.
    void acquireSnapshots();
    void followHostTempo();
    void runClock (int numSamples);
    void publishClock();
    void injectQueuedMessages (juce::MidiBuffer& midi);
    void keepThreeByteEvents (juce::MidiBuffer& midi);
    void foldToChannelOne (juce::MidiBuffer& midi);
    void splitNotesFromOthers (juce::MidiBuffer& midi);
    void runLearnAndChunks (const juce::MidiBuffer& midi, int numSamples, const PlayHeadTransportView& view);
    int runChunk (int from, int to, const PlayHeadTransportView& view);
    void mergeOtherEvents (juce::MidiBuffer& midi);
    void renderAudio (juce::AudioBuffer<float>& buffer, const juce::MidiBuffer& midi);
    bool feedSynth (const juce::MidiBuffer& midi, int numSamples);
    void renderSynth (juce::AudioBuffer<float>& buffer);
    void renderOutputChain (juce::AudioBuffer<float>& buffer);

    bool useInternalClock (const juce::Optional<juce::AudioPlayHead::PositionInfo>& hostPosition) const;
    static void reserve (juce::MidiBuffer& buffer) { buffer.ensureSize (midiBufferBytes); }

    //==============================================================================
    Sequencer::TransportControl* transport = nullptr;
    GUIToRealTime<Sequencer::LiveSlots, 5> liveSlots;
    Orv::Events::Listener liveSlotsListener;
    /** The slots acquired at the start of the block in hand. */
    const Sequencer::LiveSlots* currentSlots = nullptr;
    InternalPlayHead internalPlayHead;
    MidiProcessor midiProcessor;

    juce::MidiBuffer scratchMidi;
    juce::MidiBuffer threeByteMidi;
    juce::MidiBuffer noteMidi;
    juce::MidiBuffer otherMidi;
    juce::MidiBuffer chunkOutMidi;

    Midi::Learn::State learnSource;
    Orv::Events::Listener learnStateListener;
    GUIToRealTime<Midi::Learn::State, 5> learnState;
    std::vector<Midi::Learn::Handler*> matchedHandlers;
    juce::MidiBuffer chunkInMidi;

    WavetableSynth::Synth synth;
    /** Remembers what the synth was sent, so that switching it off ends its
        notes rather than leaving them to ring. */
    Sequencer::NoteGate synthGate;
    juce::MidiBuffer synthMidi;
    OutputChain outputChain;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (Processor)
};
} // namespace Orv::Audio::Plugins::Halvane
