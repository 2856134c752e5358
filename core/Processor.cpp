#include "core/Processor.h"

#include "midi/Keyswitches.h"
#include "midi/NoteMessage.h"
#include "midi/SlotHandler.h"

namespace Orv::Audio::Plugins::Halvane
{
namespace
{
    using namespace Orv::Midi::NoteMessage;
    constexpr double minimumTempo = 1.0;
    constexpr double fallbackTempo = 100.0;
    constexpr int stereo = 2;

    // Claims beyond this many handlers for one event are dropped rather than
    // grow the list on the audio thread.
    constexpr size_t maxMatchedHandlers = 128;

    bool isNoteOrSustain (const uint8_t* data)
    {
        if (isNoteOnOrOff (data))
            return true;
        return (data[0] & statusMask) == controllerStatus && data[numberByte] == sustainPedalController;
    }
} // namespace

//==============================================================================
Processor::Processor()
    : Orv::Audio::Plugin::Processor<State> ("Halvane", makeStereoBuses())
{
    transport = &state->transport;

    // The factory libraries are unpacked the first time in a process, and a
    // new instance starts on the default pattern preset and sound; a host
    // that restores a project replaces them right after.
    state->initialise();

    // Every rebuild of the patterns reaches the block as a fresh copy.
    auto& sequencer = state->sequencer;
    liveSlots.push (sequencer.liveSlots);
    liveSlotsListener.setCallback ([this, &sequencer] { liveSlots.push (sequencer.liveSlots); });
    sequencer.slotsBroadcaster.add (liveSlotsListener);
    currentSlots = &liveSlots.current();

    // The file player follows the state's clip from here on.
    midiProcessor.attachPlayer (*state);

    for (auto* buffer : { &scratchMidi, &threeByteMidi, &noteMidi, &otherMidi, &chunkOutMidi, &chunkInMidi, &synthMidi })
        reserve (*buffer);

    matchedHandlers.reserve (maxMatchedHandlers);

    // The keyswitches exist before the ring's listener, so that they reach the
    // block in one copy below rather than one per handler.
    for (int slot = 0; slot < Keyswitches::numSlots; ++slot)
        createHandle (learnSource, Keyswitches::notes[(size_t) slot], slot, [this] (int s) {
            midiProcessor.setPendingSlot (s);
        });

    // Every change of the handler list reaches the block as a fresh copy.
    learnStateListener.setCallback ([this] { publishLearnState(); });
    learnSource.getBroadcaster().add (learnStateListener);
    publishLearnState();

    transport->position.store (0.0);
    transport->running.store (true);
}

Processor::~Processor() = default;

void Processor::publishLearnState() { learnState.push (learnSource); }

//==============================================================================
void Processor::prepareToPlay (double sampleRate, int samplesPerBlock)
{
    internalPlayHead.prepare (sampleRate, samplesPerBlock);
    midiProcessor.prepare (sampleRate, samplesPerBlock);
    const auto numChannels = juce::jmax (getTotalNumOutputChannels(), stereo);
    synth.prepare (numChannels, sampleRate, samplesPerBlock);
    outputChain.prepare (numChannels, sampleRate, samplesPerBlock);
    transport->running.store (true);
}

void Processor::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi)
{
    const juce::ScopedNoDenormals noDenormals;

    if (! buffer.hasBeenCleared())
        buffer.clear();

    // A mono output is not a layout this instrument plays into: leave the
    // host's MIDI as it came and do not advance.
    if (buffer.getNumChannels() < 2)
        return;

    const auto numSamples = buffer.getNumSamples();

    acquireSnapshots();
    followHostTempo();
    runClock (numSamples);
    publishClock();
    injectQueuedMessages (midi);

    const PlayHeadTransportView blockView (internalPlayHead, 0, numSamples);

    keepThreeByteEvents (midi);
    foldToChannelOne (midi);
    splitNotesFromOthers (midi);
    runLearnAndChunks (midi, numSamples, blockView);
    mergeOtherEvents (midi);
    foldToChannelOne (midi);

    if (isMidiEffect())
        return;

    renderAudio (buffer, midi);
}

//==============================================================================
void Processor::acquireSnapshots()
{
    // The learn state is taken where its loop runs.
    currentSlots = &liveSlots.acquire();
}

void Processor::followHostTempo()
{
    if (auto* host = getPlayHead())
        if (const auto position = host->getPosition())
            if (const auto bpm = position->getBpm(); bpm.hasValue() && *bpm >= minimumTempo)
                transport->tempo.store (static_cast<float> (*bpm));
}

bool Processor::useInternalClock (const juce::Optional<juce::AudioPlayHead::PositionInfo>& hostPosition) const
{
    if (! hostPosition.hasValue())
        return true;
    if (! state->filePlayerActive.load() && ! hostPosition->getIsPlaying())
        return true;
    return transport->forceInternalClock.load();
}

void Processor::runClock (int numSamples)
{
    auto* host = getPlayHead();
    const auto hostPosition = host != nullptr ? host->getPosition()
                                              : juce::Optional<juce::AudioPlayHead::PositionInfo>();

    if (useInternalClock (hostPosition))
    {
        transport->running.store (true);

        auto& info = internalPlayHead.getInfo();
        info.setBpm (static_cast<double> (transport->tempo.load()));
        info.setIsPlaying (transport->running.load());
        info.setPpqPosition (transport->position.load());

        // The GUI relocates the internal clock by writing the transport's
        // sample time; the clock follows it and reports a jump.
        const auto wanted = transport->sampleTime.load();
        if (info.getTimeInSamples().orFallback (0) != wanted)
            internalPlayHead.jumpTo (wanted);

        internalPlayHead.update (nullptr, numSamples);
        return;
    }

    internalPlayHead.update (host, numSamples);

    const auto tempo = internalPlayHead.getInfo().getBpm().orFallback (fallbackTempo);
    if (tempo >= minimumTempo)
        transport->tempo.store (static_cast<float> (tempo));
    transport->running.store (internalPlayHead.getInfo().getIsPlaying());
}

void Processor::publishClock()
{
    transport->position.store (internalPlayHead.getBlockEndPpq());
    transport->sampleTime.store (internalPlayHead.getInfo().getTimeInSamples().orFallback (0));
}

void Processor::injectQueuedMessages (juce::MidiBuffer& midi)
{
    auto& sequencer = state->sequencer;
    if (sequencer.getNumQueued() == 0)
        return;

    // A pad's keyswitch comes before any note of the host at sample 0, so
    // that the host's notes of this block already meet the new pattern.
    reserve (scratchMidi);
    scratchMidi.clear();
    sequencer.drainQueue (scratchMidi);

    for (const auto event : midi)
        scratchMidi.addEvent (event.data, event.numBytes, event.samplePosition);

    midi.swapWith (scratchMidi);
}

//==============================================================================
void Processor::keepThreeByteEvents (juce::MidiBuffer& midi)
{
    reserve (threeByteMidi);
    threeByteMidi.clear();

    for (const auto event : midi)
        if (event.numBytes == threeBytes)
            threeByteMidi.addEvent (event.data, threeBytes, event.samplePosition);

    midi.swapWith (threeByteMidi);
}

void Processor::foldToChannelOne (juce::MidiBuffer& midi)
{
    reserve (scratchMidi);
    scratchMidi.clear();

    for (const auto event : midi)
    {
        uint8_t bytes[threeBytes] = { event.data[0], event.data[1], event.data[2] };
        if (bytes[0] < firstSystemStatus)
            bytes[0] &= statusMask; // channel 1 is the low nibble 0
        scratchMidi.addEvent (bytes, threeBytes, event.samplePosition);
    }

    midi.swapWith (scratchMidi);
}

void Processor::splitNotesFromOthers (juce::MidiBuffer& midi)
{
    reserve (noteMidi);
    reserve (otherMidi);
    noteMidi.clear();
    otherMidi.clear();

    for (const auto event : midi)
        (isNoteOrSustain (event.data) ? noteMidi : otherMidi).addEvent (event.data, threeBytes, event.samplePosition);

    midi.swapWith (noteMidi);
}

void Processor::runLearnAndChunks (const juce::MidiBuffer& midi, int numSamples, const PlayHeadTransportView& view)
{
    using Mode = Midi::Learn::LearnerInterface::Mode;

    reserve (chunkOutMidi);
    reserve (chunkInMidi);
    chunkOutMidi.clear();
    chunkInMidi.clear();

    const auto& learn = learnState.acquire();
    int done = 0;

    for (const auto event : midi)
    {
        const auto t = event.samplePosition;
        // Three-byte messages live in the message's inline storage: no allocation.
        const juce::MidiMessage message (event.data, event.numBytes, 0.0);
        const auto mode = learn.learner != nullptr ? learn.learner->mode.load() : Mode::idle;

        if (mode == Mode::captured)
        {
            chunkInMidi.addEvent (message, t);
            continue;
        }

        if (mode == Mode::armed)
        {
            learn.learner->capture (message);
            chunkInMidi.addEvent (message, t);
            continue;
        }

        matchedHandlers.clear();
        for (const auto& handler : learn.handlers)
            if (handler->matches (message) && matchedHandlers.size() < matchedHandlers.capacity())
                matchedHandlers.push_back (handler.get());

        if (matchedHandlers.empty())
        {
            chunkInMidi.addEvent (message, t);
            continue;
        }

        // Whatever came before the claimed event must have played before the
        // handler changes anything, e.g. the pattern in force.
        done += runChunk (done, t, view);

        for (auto* handler : matchedHandlers)
            handler->handle (message);
    }

    runChunk (done, numSamples, view);
}

int Processor::runChunk (int from, int to, const PlayHeadTransportView& view)
{
    return midiProcessor.processChunk (from, to, { chunkInMidi, chunkOutMidi, view, *state, *currentSlots });
}

void Processor::mergeOtherEvents (juce::MidiBuffer& midi)
{
    for (const auto event : otherMidi)
        chunkOutMidi.addEvent (event.data, event.numBytes, event.samplePosition);

    midi.swapWith (chunkOutMidi);
}

void Processor::renderAudio (juce::AudioBuffer<float>& buffer, const juce::MidiBuffer& midi)
{
    if (! feedSynth (midi, buffer.getNumSamples()))
    {
        // Nothing sounds and nothing behind the synth runs: the meter reads
        // silence whoever watches it.
        state->level.store (0.0f);
        return;
    }

    renderSynth (buffer);
    renderOutputChain (buffer);
}

void Processor::renderOutputChain (juce::AudioBuffer<float>& buffer)
{
    const auto& sound = state->synth;
    // A synced delay follows the clock the block ran on; without a tempo the
    // chain assumes its own fallback.
    const auto bpm = internalPlayHead.getInfo().getBpm().orFallback (0.0);
    const auto measure = state->levelListeners.load() >= 1;

    const auto level = outputChain.process (buffer, sound.synth.delay, sound.master->get(), bpm, measure);

    if (measure)
        state->level.store (level);
}

bool Processor::feedSynth (const juce::MidiBuffer& midi, int numSamples)
{
    synthMidi.clear();

    if (! state->synth.synthEnable->get())
    {
        // Switching the synth off ends what it was playing; the voices ring
        // out their release before the block stops rendering them.
        synthGate.process (synthMidi, false, false);
        return synth.isAnyVoiceActive();
    }

    for (const auto event : midi)
        if (event.samplePosition >= 0 && event.samplePosition < numSamples)
            synthMidi.addEvent (event.data, event.numBytes, event.samplePosition);

    synthGate.process (synthMidi, true, false);
    return true;
}

void Processor::renderSynth (juce::AudioBuffer<float>& buffer)
{
    auto& sound = state->synth;
    sound.pushMasterUnison();
    synth.beginBlock (sound.synth);
    synth.renderNextBlock (buffer, synthMidi);
}
} // namespace Orv::Audio::Plugins::Halvane
