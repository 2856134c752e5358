#pragma once

#include "core/Processor.h"
#include "midi/Keyswitches.h"

#include "sequencer/SequencerTestHelpers.h"
#include "support/FakeHostPlayHead.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace Orv::Testing
{
/** The whole instance, on a host clock of the test's at 120 BPM, with the
    output kept as words in song time: "+60@6000" a note-on of 60 at sample
    6000, "-60@9000" its note-off. */
struct ArpRig
{
    static constexpr double sampleRate = 48000.0;
    static constexpr double tempo = 120.0;
    static constexpr int samplesPerQuarter = 24000; // at that tempo and rate
    static constexpr int samplesPerSixteenth = samplesPerQuarter / 4;
    static constexpr int stepsPerBar = 16;
    static constexpr int maxBlock = 4096;

    /** A note event at a sample of its block. */
    struct Played
    {
        juce::MidiMessage message;
        int sample;
    };

    explicit ArpRig (int preparedBlock = 512)
    {
        processor.setPlayHead (&host);
        processor.prepareToPlay (sampleRate, preparedBlock);
        audio.setSize (2, maxBlock);
    }

    Audio::Plugins::Halvane::State& state() { return processor.getState(); }
    Sequencer::LiveControl& live() { return *state().sequencer.liveSlots.live; }

    /** Pattern `index` as a bar of steps, one per sixteenth, on the given
        rows, each `gate` of its sixteenth long. */
    void setPattern (int index, const std::vector<int>& rows, double gate = 0.5)
    {
        auto& sequencer = state().sequencer;
        auto& steps = sequencer.patterns[(size_t) index]->sequence.steps;
        steps.clear();
        for (size_t i = 0; i < rows.size(); ++i)
            steps.push_back (makeStep ((double) i / stepsPerBar, gate / stepsPerBar, rows[i]));
        sequencer.rebuild();
    }

    /** A stopped host is followed only while the file player is on: otherwise
        the arp runs on the internal clock. The player's own play button is
        off, so that the keys still feed the arp. */
    void followHostStops()
    {
        state().midiPlayer.playing.store (false);
        state().filePlayerActive.store (true);
    }

    /** Runs one block of `n` samples with `events` at block positions; a
        playing host moves on by the block. */
    void block (int n, const std::vector<Played>& events = {})
    {
        const auto ppq = (double) time / samplesPerQuarter;
        host.position = playing ? FakeHostPlayHead::playing (time, ppq, tempo) : FakeHostPlayHead::stopped (time, ppq, tempo);

        midi.clear();
        for (const auto& e : events)
            midi.addEvent (e.message, e.sample);

        audio.setSize (2, n, false, false, true);
        processor.processBlock (audio, midi);

        for (const auto event : midi)
        {
            const auto message = event.getMessage();
            if (message.isNoteOnOrOff())
                words.push_back ((message.isNoteOn() ? "+" : "-") + std::to_string (message.getNoteNumber()) + "@"
                                 + std::to_string (time + event.samplePosition));
        }

        if (playing)
            time += n;
    }

    /** Blocks of `n` until the song has reached `until`. */
    void playUntil (int64_t until, int n)
    {
        while (time < until)
            block (n);
    }

    FakeHostPlayHead host;
    Audio::Plugins::Halvane::Processor processor;
    juce::AudioBuffer<float> audio;
    juce::MidiBuffer midi;
    int64_t time = 0;
    bool playing = true;
    std::vector<std::string> words;
};

//==============================================================================
/** The seeds of a soak: `defaultCount` from 1, HALVANE_ARP_SEEDS of them for
    longer runs, or the one HALVANE_ARP_SEED for a replay. */
struct ArpSoakSeeds
{
    int first = 1;
    int count = 0;

    static ArpSoakSeeds fromEnvironment (int defaultCount)
    {
        if (const auto* seed = std::getenv ("HALVANE_ARP_SEED"))
            return { std::atoi (seed), 1 };
        if (const auto* count = std::getenv ("HALVANE_ARP_SEEDS"))
            return { 1, std::atoi (count) };
        return { 1, defaultCount };
    }
};

/** What one seed of the soak did. */
struct ArpSoakResult
{
    /** The first note struck while it sounded, as a word, or empty. */
    std::string struckWhileOn;
    /** The notes still on after the transport stopped at the end. */
    std::vector<int> leftOn;
    int64_t blocks = 0;
    int64_t samples = 0;

    bool holds() const { return struckWhileOn.empty() && leftOn.empty(); }

    std::string describe (int seed) const
    {
        auto text = "seed " + std::to_string (seed) + ":";
        if (! struckWhileOn.empty())
            text += " struck while on, " + struckWhileOn + ";";
        for (const auto note : leftOn)
            text += " note " + std::to_string (note) + " left on;";
        return text;
    }
};

/** Fills the eight patterns with random steps on the rows a pattern may hold. */
inline void randomPatterns (ArpRig& rig, std::mt19937& random)
{
    using Audio::Plugins::Halvane::Pattern;
    auto& sequencer = rig.state().sequencer;
    for (auto& pattern : sequencer.patterns)
    {
        auto& steps = pattern->sequence.steps;
        steps.clear();
        const auto count = std::uniform_int_distribution<int> (4, 16) (random);
        for (int i = 0; i < count; ++i)
        {
            const auto start = std::uniform_int_distribution<int> (0, ArpRig::stepsPerBar - 1) (random);
            const auto length = std::uniform_int_distribution<int> (1, 8) (random);
            const auto row = std::uniform_int_distribution<int> (Pattern::lowestLoadedRow, Pattern::highestLoadedRow) (random);
            steps.push_back (makeStep ((double) start / ArpRig::stepsPerBar, (double) length / (2 * ArpRig::stepsPerBar), row));
        }
    }
    sequencer.rebuild();
}

/** One seed of random play against a model of what a receiver sees: no note
    may be struck while it sounds, and once the transport has stopped none may
    be left sounding, whatever the chords, keyswitches, stops, jumps, pattern
    edits and block sizes before. The seed alone decides every draw, so a
    failure replays. */
inline ArpSoakResult playArpSoak (int seed)
{
    namespace Keyswitches = Audio::Plugins::Halvane::Keyswitches;
    using Played = ArpRig::Played;
    constexpr std::array<int, 4> blockSizes { 1, 7, 64, 4096 };
    constexpr int blocksPerSeed = 300;
    constexpr int stopBlock = 64;

    std::mt19937 random ((unsigned) seed);
    auto chance = [&random] (double p) { return std::uniform_real_distribution<double> (0.0, 1.0) (random) < p; };
    auto pick = [&random] (int low, int high) { return std::uniform_int_distribution<int> (low, high) (random); };
    auto on = [] (int note) { return juce::MidiMessage::noteOn (1, note, (uint8_t) 100); };
    auto off = [] (int note) { return juce::MidiMessage::noteOff (1, note); };

    ArpRig rig (64);
    randomPatterns (rig, random);
    if (chance (0.5))
        rig.followHostStops();
    *rig.state().arp.quantize = pick (0, 5);
    *rig.state().arp.retrigger = chance (0.3);

    ArpSoakResult result;
    std::array<bool, 128> sounding {};
    // HALVANE_ARP_TRACE prints every block and what came out, for a replay.
    const auto trace = std::getenv ("HALVANE_ARP_TRACE") != nullptr;
    auto play = [&] (int n, const std::vector<Played>& events) {
        const auto from = rig.words.size();
        if (trace)
        {
            std::printf ("block %d at %lld %s:", n, (long long) rig.time, rig.playing ? "playing" : "stopped");
            for (const auto& e : events)
                std::printf (" %s%d@%d", e.message.isNoteOn() ? "+" : "-", e.message.getNoteNumber(), e.sample);
            std::printf ("\n");
        }
        rig.block (n, events);
        if (trace)
        {
            for (auto i = from; i < rig.words.size(); ++i)
                std::printf ("  %s", rig.words[i].c_str());
            std::printf ("\n");
        }
        ++result.blocks;
        result.samples += n;

        for (auto i = from; i < rig.words.size(); ++i)
        {
            const auto& w = rig.words[i];
            const auto note = (size_t) std::stoi (w.substr (1, w.find ('@') - 1));
            if (w[0] == '+' && sounding[note])
            {
                result.struckWhileOn = w;
                return false;
            }
            sounding[note] = w[0] == '+';
        }
        return true;
    };

    std::vector<int> held;
    for (int b = 0; b < blocksPerSeed; ++b)
    {
        const auto n = blockSizes[(size_t) pick (0, (int) blockSizes.size() - 1)];
        std::vector<Played> events;

        if (chance (0.4))
        {
            const auto note = pick (48, 72);
            const auto at = pick (0, n - 1);
            const auto isHeld = std::find (held.begin(), held.end(), note) != held.end();
            events.push_back ({ isHeld ? off (note) : on (note), at });
            if (isHeld)
                held.erase (std::find (held.begin(), held.end(), note));
            else
                held.push_back (note);
        }
        if (chance (0.05))
            events.push_back ({ on (Keyswitches::notes[(size_t) pick (0, Keyswitches::numSlots - 1)]), pick (0, n - 1) });
        if (chance (0.03))
            rig.playing = ! rig.playing;
        if (chance (0.02))
            rig.time = pick (0, 40) * ArpRig::samplesPerSixteenth + pick (0, 100);
        if (chance (0.02))
            randomPatterns (rig, random);

        std::sort (events.begin(), events.end(), [] (const Played& a, const Played& b) { return a.sample < b.sample; });
        if (! play (n, events))
            return result;
    }

    rig.followHostStops();
    rig.playing = false;
    if (! play (stopBlock, {}) || ! play (stopBlock, {}))
        return result;

    for (int note = 0; note < (int) sounding.size(); ++note)
        if (sounding[(size_t) note])
            result.leftOn.push_back (note);
    return result;
}
} // namespace Orv::Testing
