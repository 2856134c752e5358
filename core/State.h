#pragma once

#include "core/Broadcaster.h"
#include "core/GUIMapping.h"
#include "core/OctaveRange.h"
#include "core/PluginStateBase.h"
#include "parameters/ParamList.h"
#include "sequencer/ArpSettings.h"
#include "sequencer/LivePatterns.h"
#include "sequencer/PitchMapRing.h"
#include "sequencer/TransportControl.h"
#include "sequencer/midiplayer/ChoiceParam.h"
#include "sequencer/midiplayer/State.h"
#include "synth/SynthParams.h"
#include "synth/SynthPreset.h"

#include <atomic>

namespace Orv::Audio::Plugins::Halvane
{
/** Everything an instance keeps. The Processor owns it; the editor holds
    references into it, so closing the window loses nothing. Made and
    destroyed on the message thread; the audio thread reads only parameters
    and atomics here, and writes the level, the pitch-map ring and the
    transport's and live control's words. */
class State : public Audio::Plugin::StateBase
{
public:
    /** Message thread: the eight patterns, already rebuilt into slots. */
    State();
    ~State() override;

    //==============================================================================
    /** Files older than this hold patterns in a form no longer read. */
    Version getMinVersion() const override { return { 0, 5, 3 }; }
    juce::File getDefaultFile() const override { return getFactoryDirectoryResolved().getChildFile ("WELCOME.json"); }
    /** The pattern library first, then the sound's: an instance starts with
        the default pattern preset and the default sound. */
    void initialise() override;
    Audio::ParamList* getParams() override { return &params; }

    /** "Patterns", and in an instance pass the player, the sound, the
        octave range and the piano roll's settings. */
    void reflectContent (Reflector& reflector) override;

    /** The arp's parameters and octave range: what the note path reads on
        every span. */
    ArpSettings arp;

    /** The file player: its clip and its two switches. */
    Sequencer::MidiPlayer::State midiPlayer;
    /** The choice of built-in clip, for the GUI. */
    Sequencer::MidiPlayer::ChoiceParam midiFiles { midiPlayer };

    /** The eight patterns, their slots and the keyswitch queue. */
    LivePatterns sequencer;
    /** The one transport of the instance: the patterns' own. */
    Sequencer::TransportControl& transport { sequencer.transport };

    /** The sound. A sound preset's "Params"; it is kept beside the arp's
        list, since pattern presets do not carry the sound. */
    SynthParams synth;
    /** The sound as a preset of its own, over `synth`. */
    SynthPreset sound { synth };
    /** The octaves the arp's notes fold into; writes `arp`'s range word. */
    OctaveRange octaveRange { arp };
    /** The piano roll's small settings. */
    UIState ui;
    /** The arp's row-to-note table, for the display. */
    PitchMapRing pitchMap;
    /** The display's copy of that table, taken on the shared tick. */
    GUIMapping guiMapping { pitchMap };

    /** Output level of the last block, for the meter. Written by the audio
        thread. */
    std::atomic<float> level { 0.0f };
    /** Number of meters watching `level`; the block measures only when
        someone looks. */
    std::atomic<int> levelListeners { 0 };
    /** The file player's "active": while it is on the player, not the keys,
        feeds the arp, and the block's clock follows a stopped host. */
    std::atomic<bool>& filePlayerActive { midiPlayer.active };


    /** Message thread: the fronts the host sees, in the host's order; the
        processor attaches them to itself. */
    Audio::ParamList& getHostedParams() noexcept { return hostedParams; }

    /** How many oscillators the host can reach; the others only presets set. */
    static constexpr int numHostedOscillators = 2;

private:
    void addHostedParams();
    void rebuildIfSwingMoved();

    // Declared after everything they point into: the host's fronts listen to
    // the tree's parameters, and the tree's hidden owners delete them.
    Audio::ParamList params;
    Audio::ParamList hostedParams;

    // The swing parameters may move from the host's thread; the slots are
    // rebuilt from the shared tick instead, on the message thread.
    float lastSwing = 0.0f;
    float lastSwingRef = 0.0f;
    Events::Listener swingListener;
};
} // namespace Orv::Audio::Plugins::Halvane
