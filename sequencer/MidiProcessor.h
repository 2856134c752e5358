#pragma once

#include "core/PlayHeadTransportView.h"
#include "core/State.h"
#include "midi/NoteLimitProcessor.h"
#include "midi/SustainPedalSimpleProcessor.h"
#include "midi/TransposeProcessor.h"
#include "sequencer/ChordMap.h"
#include "sequencer/LiveSlots.h"
#include "sequencer/MidiMetaSlot.h"
#include "sequencer/NoteGate.h"
#include "sequencer/midiplayer/Processor.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <cstdint>

namespace Orv::Audio::Plugins::Halvane
{
/** What one call of the note path works with. Everything is the block's:
    positions in `in` and `out` are block positions. */
struct ChunkContext
{
    /** Every event of the block that has reached the note path so far. */
    const juce::MidiBuffer& in;
    /** Where the span's results are added. */
    juce::MidiBuffer& out;
    /** The whole block's clock. */
    const PlayHeadTransportView& blockView;
    State& state;
    /** The pattern slots acquired for this block. */
    const Sequencer::LiveSlots& slots;
};

/** The whole note path, from the learned and filtered input to the arp's
    output: the source gates, sustain, transpose and note limit, the held
    chord and its row-to-note table, and the pattern that plays over it.

    A pattern holds rows, not pitches. The slot in force runs against the
    block's clock as a stream of row-numbered notes, and the chord map turns
    each row into the real notes of the chord held now; a note-off ends what
    its row started, whatever the chord has become since.

    Built on the message thread; after prepare() audio thread only, and
    allocation-free for the usual three-byte messages. */
class MidiProcessor
{
public:
    /** The value of getPendingSlot() when no slot is asked for. */
    static constexpr int noSlot = -1;

    /** Message thread: builds the chain and the runners, and reserves. */
    MidiProcessor();

    /** Message thread: the file player follows the state's player from now
        on. Until then it has no clip, and plays silence when switched on. */
    void attachPlayer (State& state) { midiPlayer.attach (state.midiPlayer); }

    /** Prepare time, never during a block: makes room for runs of up to
        `samplesPerBlock` samples (allocates). */
    void prepare (double sampleRate, int samplesPerBlock);

    /** Audio thread; never blocks but for the live control's spin lock.
        Runs the samples from `from` up to `to` of the block: the events of
        the context's input in that span go through the chain and the arp,
        and the result is added to the context's output. Returns the number
        of samples run, `to - from`, which is not positive for an empty
        span that runs nothing. */
    int processChunk (int from, int to, const ChunkContext& context);

    /** Audio thread, from the keyswitch handlers: asks for a slot to be
        (re)started, at the next quantize boundary while the clock plays. */
    void setPendingSlot (int slot) noexcept { pendingSlot = slot; }

    /** Audio thread: the slot asked for and not yet taken up, or noSlot. */
    int getPendingSlot() const noexcept { return pendingSlot; }

    /** Audio thread, or a test: the held chord and its table. */
    const ChordMap& getChordMap() const noexcept { return chordMap; }

    /** Audio thread, or a test: the file player. */
    const Sequencer::MidiPlayer::Processor& getMidiPlayer() const noexcept { return midiPlayer; }

private:
    void copySpan (const juce::MidiBuffer& in, int from, int to);
    static bool filePlayerDrives (const ChunkContext& context, const PlayHeadTransportView& span) noexcept;
    void selectSource (const ChunkContext& context, const PlayHeadTransportView& span);
    void runChain (const ArpSettings& settings, ArpSettings::Octaves octaves, bool playerActive);
    bool runNotes (const ChunkContext& context, const PlayHeadTransportView& span, bool playerActive);
    int runArpStage (int from, int to, const PlayHeadTransportView& span, const Sequencer::LiveSlots& slots);

    juce::MidiBuffer workMidi;
    Sequencer::MidiPlayer::Processor midiPlayer;
    /** Whether the last span's notes came from the file player. */
    bool playerFed = false;
    Sequencer::NoteGate playerGate;
    Sequencer::NoteGate inputGate;
    Midi::SustainPedal::SimpleProcessor sustain;
    Midi::Mapper::TransposeProcessor transpose;
    Midi::Mapper::NoteLimitProcessor noteLimit;
    ChordMap chordMap;
    Sequencer::NoteGate arpGate;
    juce::MidiBuffer arpOutMidi;
    int32_t pendingSlot = noSlot;
    juce::MidiBuffer arpStageMidi;
    MidiMetaSlot metaSlot;
};
} // namespace Orv::Audio::Plugins::Halvane
