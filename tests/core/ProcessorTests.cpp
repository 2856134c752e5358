#include "core/Processor.h"
#include "core/WithEditor.h"
#include "editor/Editor.h"
#include "midi/Keyswitches.h"
#include "support/AllocationCounter.h"
#include "support/FakeHostPlayHead.h"

#include <gtest/gtest.h>

using Orv::Audio::Plugins::Halvane::Processor;

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int blockSize = 512;

struct Event
{
    std::vector<uint8_t> bytes;
    int position;
};

std::vector<Event> eventsOf (const juce::MidiBuffer& buffer)
{
    std::vector<Event> result;
    for (const auto m : buffer)
        result.push_back ({ std::vector<uint8_t> (m.data, m.data + m.numBytes), m.samplePosition });
    return result;
}

/** A processor prepared for stereo blocks, with a host clock of the test's. */
struct Fixture
{
    Fixture()
    {
        processor.setPlayHead (&clock);
        processor.prepareToPlay (sampleRate, blockSize);
        audio.setSize (2, blockSize);
    }

    /** Played notes then pass the chain to the output, which so shows what
        reached the note path. */
    void arpOff() { *processor.getState().arp.arpActive = Orv::Audio::Plugins::Halvane::ArpSettings::arpOff; }

    std::vector<Event> run (const juce::MidiBuffer& in, int numSamples = blockSize)
    {
        audio.setSize (audio.getNumChannels(), numSamples, false, false, true);
        midi = in;
        processor.processBlock (audio, midi);
        return eventsOf (midi);
    }

    Orv::Testing::FakeHostPlayHead clock;
    Processor processor;
    juce::AudioBuffer<float> audio;
    juce::MidiBuffer midi;
};

/** Claims one note number and records what it was handed. */
struct RecordingHandler : Orv::Midi::Learn::Handler
{
    // Room reserved up front: the handler runs inside counted blocks.
    explicit RecordingHandler (int n) : note (n) { handled.reserve (1024); }

    bool matches (const juce::MidiMessage& m) override { return m.isNoteOnOrOff() && m.getNoteNumber() == note; }
    void handle (const juce::MidiMessage& m) override { handled.push_back (m); }

    int note;
    std::vector<juce::MidiMessage> handled;
};

struct TestLearner : Orv::Midi::Learn::LearnerInterface
{
    bool learn() override { return true; }
};
} // namespace

//==============================================================================
TEST (ProcessorAnswers, OneNamelessProgramAndNoTail)
{
    Processor processor;
    EXPECT_EQ (processor.getName(), "Halvane");
    EXPECT_EQ (processor.getNumPrograms(), 1);
    EXPECT_EQ (processor.getCurrentProgram(), 0);
    processor.setCurrentProgram (3);
    EXPECT_EQ (processor.getCurrentProgram(), 0);
    EXPECT_TRUE (processor.getProgramName (0).isEmpty());
    EXPECT_FALSE (processor.supportsMPE());
    EXPECT_EQ (processor.getTailLengthSeconds(), 0.0);
}

//==============================================================================
TEST (ProcessorMidi, KeepsOnlyThreeByteEventsAndFoldsEverythingToChannelOne)
{
    Fixture f;
    juce::MidiBuffer in;
    const uint8_t sysex[] = { 0xF0, 0x43, 0x12, 0x00, 0xF7 };
    in.addEvent (sysex, sizeof (sysex), 3);
    in.addEvent (juce::MidiMessage::programChange (5, 7), 4); // two bytes: dropped
    in.addEvent (juce::MidiMessage::controllerEvent (9, 7, 100), 11);
    in.addEvent (juce::MidiMessage::pitchWheel (16, 9000), 200);
    in.addEvent (juce::MidiMessage::aftertouchChange (3, 60, 55), 301);

    const auto out = f.run (in);

    ASSERT_EQ (out.size(), 3u);
    EXPECT_EQ (out[0].bytes, (std::vector<uint8_t> { 0xB0, 7, 100 }));
    EXPECT_EQ (out[0].position, 11);
    EXPECT_EQ (out[1].bytes[0], 0xE0);
    EXPECT_EQ (out[1].position, 200);
    EXPECT_EQ (out[2].position, 301);
}

TEST (ProcessorMidi, ControllersAndPitchBendKeepTheirSamplePositionsBesideNotes)
{
    Fixture f;
    juce::MidiBuffer in;
    in.addEvent (juce::MidiMessage::noteOn (2, 60, (uint8_t) 100), 5);
    in.addEvent (juce::MidiMessage::controllerEvent (2, 64, 127), 6);
    in.addEvent (juce::MidiMessage::controllerEvent (2, 1, 64), 7);
    in.addEvent (juce::MidiMessage::pitchWheel (2, 100), 480);
    in.addEvent (juce::MidiMessage::noteOff (2, 60), 500);

    const auto out = f.run (in);
    std::vector<int> positions;
    for (const auto& e : out)
    {
        EXPECT_EQ (e.bytes[0] & 0x0F, 0) << "event at " << e.position;
        if ((e.bytes[0] == 0xB0 && e.bytes[1] == 1) || e.bytes[0] == 0xE0)
            positions.push_back (e.position);
    }
    EXPECT_EQ (positions, (std::vector<int> { 7, 480 }));
}

TEST (ProcessorMidi, MonoBufferLeavesMidiUntouchedAndTheClockStill)
{
    Fixture f;
    f.audio.setSize (1, blockSize);
    f.clock.playingAt (96000, 4.0);
    juce::MidiBuffer in;
    const uint8_t sysex[] = { 0xF0, 0x01, 0xF7 };
    in.addEvent (sysex, sizeof (sysex), 1);
    in.addEvent (juce::MidiMessage::noteOn (7, 60, (uint8_t) 90), 2);

    const auto before = f.processor.getState().transport.position.load();
    const auto out = f.run (in);

    ASSERT_EQ (out.size(), 2u);
    EXPECT_EQ (out[0].bytes.size(), sizeof (sysex));
    EXPECT_EQ (out[1].bytes[0], 0x96);
    EXPECT_EQ (f.processor.getState().transport.position.load(), before);
}

TEST (ProcessorMidi, ZeroSampleBlockRunsEveryStage)
{
    Fixture f;
    f.clock.playingAt (0, 0.0);
    juce::MidiBuffer in;
    in.addEvent (juce::MidiMessage::controllerEvent (4, 10, 1), 0);
    const auto out = f.run (in, 0);
    ASSERT_EQ (out.size(), 1u);
    EXPECT_EQ (out[0].bytes[0], 0xB0);
}

//==============================================================================
TEST (ProcessorClock, TheTransportFollowsAPlayingHostAndOtherwiseRunsOnTheInternalClock)
{
    using Orv::Testing::FakeHostPlayHead;
    const double perBpm = blockSize / (60.0 * sampleRate); // quarter notes a block per bpm
    const struct
    {
        const char* what;
        juce::Optional<juce::AudioPlayHead::PositionInfo> host; // none: no play head at all
        bool forceInternal, playerOn;
        int numBlocks;
        double position;
        float tempo;
        bool running;
    } cases[] = {
        { "a playing host drives it", FakeHostPlayHead::playing (48000, 8.0, 150.0), false, false, 1, 8.0 + 150.0 * perBpm, 150.0f, true },
        { "a stopped host's tempo is followed, not its position", FakeHostPlayHead::stopped (0, 32.0, 90.0), false, false, 2, 2.0 + 2 * 90.0 * perBpm, 90.0f, true },
        { "with the player on a stopped host is followed", FakeHostPlayHead::stopped (1000, 12.0, 100.0), false, true, 1, 12.0, 100.0f, false },
        { "a forced internal clock ignores a playing host", FakeHostPlayHead::playing (0, 64.0, 60.0), true, false, 1, 2.0 + 60.0 * perBpm, 60.0f, true },
        { "without a play head the internal tempo runs", juce::nullopt, false, false, 4, 2.0 + 4 * 60.0 * perBpm, 60.0f, true },
    };

    for (const auto& c : cases)
    {
        Fixture f;
        auto& state = f.processor.getState();
        state.transport.position.store (2.0);
        state.transport.tempo.store (60.0f);
        state.transport.forceInternalClock.store (c.forceInternal);
        state.filePlayerActive.store (c.playerOn);
        f.clock.position = c.host;
        if (! c.host.hasValue())
            f.processor.setPlayHead (nullptr);

        for (int i = 0; i < c.numBlocks; ++i)
            f.run ({});

        EXPECT_NEAR (state.transport.position.load(), c.position, 1e-9) << c.what;
        EXPECT_EQ (state.transport.tempo.load(), c.tempo) << c.what;
        EXPECT_EQ (state.transport.running.load(), c.running) << c.what;
        if (c.host.hasValue() && c.host->getIsPlaying() && ! c.forceInternal)
        {
            EXPECT_EQ (state.transport.sampleTime.load(), *c.host->getTimeInSamples() + blockSize) << c.what;
        }
    }
}

//==============================================================================
TEST (ProcessorLearn, ClaimedEventsNeverReachTheNotePathAndEarlierEventsPlayFirst)
{
    Fixture f;
    f.arpOff();
    auto handler = std::make_shared<RecordingHandler> (24);
    f.processor.getLearnState().handlers.push_back (handler);
    f.processor.publishLearnState();

    juce::MidiBuffer in;
    in.addEvent (juce::MidiMessage::noteOn (1, 60, (uint8_t) 100), 10);
    in.addEvent (juce::MidiMessage::noteOn (1, 24, (uint8_t) 100), 10);
    in.addEvent (juce::MidiMessage::noteOn (1, 62, (uint8_t) 100), 10);
    in.addEvent (juce::MidiMessage::noteOff (1, 24), 300);

    const auto out = f.run (in);

    ASSERT_EQ (handler->handled.size(), 2u);
    EXPECT_TRUE (handler->handled[0].isNoteOn());
    EXPECT_TRUE (handler->handled[1].isNoteOff());
    std::vector<int> notes;
    for (const auto& e : out)
        notes.push_back (e.bytes[1]);
    // Each note passes exactly once although the span is re-run after a claim.
    EXPECT_EQ (notes, (std::vector<int> { 60, 62 }));
}

TEST (ProcessorLearn, ArmedLearnerCapturesTheNextEventWhichStillPasses)
{
    Fixture f;
    f.arpOff();
    TestLearner learner;
    learner.mode.store (TestLearner::armed);
    f.processor.getLearnState().learner = &learner;
    f.processor.publishLearnState();

    juce::MidiBuffer in;
    in.addEvent (juce::MidiMessage::controllerEvent (3, 64, 127), 20);
    in.addEvent (juce::MidiMessage::noteOn (1, 61, (uint8_t) 100), 30);
    const auto out = f.run (in);

    EXPECT_EQ (learner.mode.load(), TestLearner::captured);
    EXPECT_EQ (learner.counter.load(), 1);
    EXPECT_TRUE (learner.message.isControllerOfType (64));
    // Both went on to the note path, where the sustain stage keeps the pedal.
    ASSERT_EQ (out.size(), 1u);
    EXPECT_EQ (out[0].bytes, (std::vector<uint8_t> { 0x90, 61, 100 }));
}

TEST (ProcessorLearn, APadsKeyswitchComesAheadOfTheHostsNotesAndSelectsItsPattern)
{
    Fixture f;
    auto& state = f.processor.getState();
    // The host stands still and is followed: a selection is done at once.
    state.filePlayerActive.store (true);
    f.clock.stoppedAt (0, 0.0);

    TestLearner learner;
    learner.mode.store (TestLearner::armed);
    f.processor.getLearnState().learner = &learner;
    f.processor.publishLearnState();

    juce::MidiBuffer in;
    in.addEvent (juce::MidiMessage::noteOn (1, 60, (uint8_t) 100), 0);
    state.sequencer.selectPattern (5);
    f.run (in);
    EXPECT_EQ (learner.message.getNoteNumber(), Orv::Audio::Plugins::Halvane::Keyswitches::notes[5])
        << "the first event the block saw";

    f.processor.getLearnState().learner = nullptr;
    f.processor.publishLearnState();
    state.sequencer.selectPattern (5);
    f.run (in);
    EXPECT_EQ (state.sequencer.liveSlots.live->active.load(), 5);
    EXPECT_EQ (state.sequencer.getNumQueued(), 0u);
}

//==============================================================================
TEST (ProcessorRealTime, SteadyStateBlocksAllocateNothing)
{
    Fixture f;
    f.clock.playingAt (0, 0.0);
    f.processor.getLearnState().handlers.push_back (std::make_shared<RecordingHandler> (24));
    f.processor.publishLearnState();

    juce::MidiBuffer in;
    for (int i = 0; i < 40; ++i)
    {
        in.addEvent (juce::MidiMessage::noteOn (1 + i % 16, 40 + i, (uint8_t) 90), i * 12);
        in.addEvent (juce::MidiMessage::controllerEvent (1 + i % 16, 1, i), i * 12 + 1);
    }
    in.addEvent (juce::MidiMessage::noteOn (1, 24, (uint8_t) 90), 100);
    const uint8_t sysex[] = { 0xF0, 0x7E, 0x00, 0x09, 0x01, 0xF7 };
    in.addEvent (sysex, sizeof (sysex), 50);

    // As a host does: one buffer of its own, emptied and refilled each block.
    auto refill = [&] {
        f.midi.clear();
        for (const auto event : in)
            f.midi.addEvent (event.data, event.numBytes, event.samplePosition);
    };

    // The first blocks settle the capacities that the buffer swaps pass around.
    for (int i = 0; i < 8; ++i)
    {
        refill();
        f.processor.processBlock (f.audio, f.midi);
    }

    int64_t allocations = 0;
    for (int i = 0; i < 100; ++i)
    {
        refill();
        Orv::Testing::AllocationCounter counter;
        f.processor.processBlock (f.audio, f.midi);
        allocations += counter.getCount();
    }
    EXPECT_EQ (allocations, 0);
}

//==============================================================================
TEST (ProcessorDisplay, TheDisplaysPitchMapFollowsTheHeldChordOnTheTickAfterTheBlock)
{
    Fixture f;
    auto& mapping = f.processor.getState().guiMapping;
    int told = 0;
    Orv::Events::Listener listener (mapping.getBroadcaster(), [&] { ++told; });

    juce::MidiBuffer in;
    for (const auto note : { 67, 60, 64 })
        in.addEvent (juce::MidiMessage::noteOn (1, note, (uint8_t) 90), 3);
    f.run (in);
    EXPECT_EQ (mapping.getSortedNotes().count, 0) << "nothing before the tick";

    mapping.poll();
    EXPECT_EQ (told, 1);
    EXPECT_EQ (std::vector<int> (mapping.getSortedNotes().begin(), mapping.getSortedNotes().end()),
               (std::vector<int> { 60, 64, 67 }));
    const auto& centre = mapping.getTable()[(size_t) Orv::Audio::Plugins::Halvane::ChordMap::centreRow];
    ASSERT_GE (centre.count, 1);
    EXPECT_EQ (centre.notes[0], 60) << "the centre row is the lowest held note";

    // Blocks that change nothing publish nothing, and the display is not told.
    f.run ({});
    mapping.poll();
    EXPECT_EQ (told, 1);
}

//==============================================================================
namespace
{
float peakOf (const juce::AudioBuffer<float>& audio, int channel)
{
    return audio.getMagnitude (channel, 0, audio.getNumSamples());
}
} // namespace

TEST (ProcessorAudio, APlayedNoteSoundsOnBothChannelsUnderTheMasterAndTheMeterReadsItOnlyWhenWatched)
{
    Fixture f;
    f.arpOff();
    auto& sound = f.processor.getState().synth;

    juce::MidiBuffer in;
    in.addEvent (juce::MidiMessage::noteOn (1, 60, (uint8_t) 100), 0);
    f.run (in);
    // The output fades in over its first tenth of a second.
    for (int i = 0; i < 10; ++i)
        f.run ({});
    for (int c = 0; c < 2; ++c)
        EXPECT_GT (peakOf (f.audio, c), 0.01f) << "channel " << c;
    EXPECT_EQ (f.processor.getState().level.load(), 0.0f) << "nobody watches the meter";

    f.processor.getState().levelListeners.store (1);
    f.run ({});
    const auto rms = f.audio.getRMSLevel (0, 0, blockSize);
    EXPECT_GT (rms, 0.0f);
    EXPECT_FLOAT_EQ (f.processor.getState().level.load(), rms) << "the first channel's RMS";

    // The master at its floor is silence, once its glide has landed.
    sound.master->setValueNotifyingHost (0.0f);
    for (int i = 0; i < 20; ++i)
        f.run ({});
    EXPECT_EQ (peakOf (f.audio, 0), 0.0f);
    EXPECT_EQ (f.processor.getState().level.load(), 0.0f);
}

TEST (ProcessorAudio, SwitchingTheSynthOffEndsItsNotesLetsThemRingOutAndThenRendersNothing)
{
    Fixture f;
    f.arpOff();
    auto& sound = f.processor.getState().synth;
    *sound.synth.adsr.release = 0.5f;
    f.processor.getState().levelListeners.store (1);

    juce::MidiBuffer in;
    in.addEvent (juce::MidiMessage::noteOn (1, 64, (uint8_t) 100), 0);
    f.run (in);
    for (int i = 0; i < 10; ++i)
        f.run ({});
    ASSERT_GT (peakOf (f.audio, 0), 0.01f);

    // Off at exactly one half still counts as on.
    sound.synthEnable->setValueNotifyingHost (0.5f);
    f.run ({});
    EXPECT_GT (peakOf (f.audio, 0), 0.01f);

    *sound.synthEnable = false;
    f.run ({});
    EXPECT_TRUE (f.processor.getSynth().isAnyVoiceActive()) << "the release rings on";
    EXPECT_GT (peakOf (f.audio, 0), 0.0f);

    // Half a second of release, and a little more for the delay's glides.
    for (int i = 0; i < 60; ++i)
        f.run ({});
    EXPECT_FALSE (f.processor.getSynth().isAnyVoiceActive());
    EXPECT_EQ (peakOf (f.audio, 0), 0.0f);
    EXPECT_EQ (f.processor.getState().level.load(), 0.0f);

    // A note played while the synth is off is never heard, but still leaves.
    in.clear();
    in.addEvent (juce::MidiMessage::noteOn (1, 67, (uint8_t) 100), 10);
    const auto out = f.run (in);
    EXPECT_EQ (out.size(), 1u);
    EXPECT_FALSE (f.processor.getSynth().isAnyVoiceActive());
    EXPECT_EQ (peakOf (f.audio, 0), 0.0f);
}

//==============================================================================
namespace
{
/** A processor whose every host-facing call fails. */
class FailingProcessor : public Processor
{
public:
    void prepareToPlay (double, int) override { throw std::runtime_error ("prepare"); }
    void processBlock (juce::AudioBuffer<float>&, juce::MidiBuffer&) override { throw std::runtime_error ("block"); }
    using Processor::processBlock;
    void getStateInformation (juce::MemoryBlock&) override { throw std::runtime_error ("save"); }
    void setStateInformation (const void*, int) override { throw std::bad_alloc(); }
    void setCurrentProgram (int) override { throw 42; }
};

using GuardedFailing = Orv::Audio::Plugin::WithEditor<FailingProcessor, Orv::GUI::Plugins::Halvane::Editor>;
} // namespace

TEST (ProcessorBoundary, NoExceptionLeavesAHostCallAndAFailedBlockIsSilent)
{
    GuardedFailing processor;
    EXPECT_NO_THROW (processor.prepareToPlay (sampleRate, blockSize));

    juce::AudioBuffer<float> audio (2, 64);
    audio.clear();
    audio.setSample (0, 3, 0.5f);
    juce::MidiBuffer midi;
    midi.addEvent (juce::MidiMessage::noteOn (1, 60, (uint8_t) 100), 0);
    EXPECT_NO_THROW (processor.processBlock (audio, midi));
    EXPECT_TRUE (midi.isEmpty());
    EXPECT_EQ (audio.getMagnitude (0, 64), 0.0f);

    juce::MemoryBlock blob;
    EXPECT_NO_THROW (processor.getStateInformation (blob));
    EXPECT_NO_THROW (processor.setStateInformation ("x", 1));
    EXPECT_NO_THROW (processor.setCurrentProgram (0));
}
