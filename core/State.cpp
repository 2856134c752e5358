#include "core/State.h"

#include "core/SharedTimer.h"

#include <initializer_list>

namespace Orv::Audio::Plugins::Halvane
{
namespace
{
    float valueOf (const juce::AudioProcessorParameter& parameter) { return parameter.getValue(); }
} // namespace

State::State()
    : lastSwing (valueOf (*transport.swing)),
      lastSwingRef (valueOf (*transport.swingRef)),
      swingListener (Events::SharedTimer::get().getBroadcaster(), [this] { rebuildIfSwingMoved(); })
{
    for (auto* holder : std::initializer_list<Audio::ParamHolderBase*> {
             &arp.quantize, &arp.retrigger, &arp.transpose, &arp.octave, &arp.key, &arp.arpActive, &transport.swing,
             &transport.swingRef })
        params.addParam (*holder);

    // Hidden processors own the tree, so that its parameters have an owner
    // and an index before any front points at them.
    params.attach (nullptr);
    synth.attach (nullptr);
    addHostedParams();
}

void State::addHostedParams()
{
    auto& engine = synth.synth;
    auto add = [this] (Audio::ParamHolderBase& target, const juce::String& id) { hostedParams.addForwarder (target, id); };

    // The host's order and ids are what automation in saved projects refers
    // to: append only, never reorder or rename.
    add (arp.transpose, "Transpose");
    add (arp.octave, "Octave");
    add (arp.key, "Key");
    add (arp.quantize, "Quantize");
    add (arp.retrigger, "Retrigger");
    add (transport.swing, "Swing");
    add (transport.swingRef, "Swing-Ref");
    add (synth.synthEnable, "Enable-Synth");
    add (synth.master, "Synth-Volume");
    add (synth.unison, "Unison-Voices");
    add (synth.unisonAmount, "Unison-Amount");

    // Hosts count oscillators from 1.
    for (int i = 0; i < numHostedOscillators; ++i)
    {
        auto& osc = engine.oscillators.osc[(size_t) i];
        const auto prefix = "OSC-" + juce::String (i + 1) + "-";
        add (osc.enable, prefix + "Enable");
        add (osc.octave, prefix + "Octave");
        add (osc.volume, prefix + "Volume");
    }

    add (engine.sub.subOctave, "Sub-Octave");
    add (engine.sub.subVolume, "Sub-Volume");
    add (engine.adsr.attack, "ADSR-Attack");
    add (engine.adsr.decay, "ADSR-Decay");
    add (engine.adsr.sustain, "ADSR-Sustain");
    add (engine.adsr.release, "ADSR-Release");
    add (engine.filter.enable, "Filter-Enable");
    add (engine.filter.cutoff, "Filter-Cutoff");
    add (engine.filter.resonance, "Filter-Resonance");
    add (engine.filter.keyTracking, "Filter-Key-Tracking");
    add (engine.delay.analog, "Delay-Analog");
    add (engine.delay.time, "Delay-Time-Free");
    add (engine.delay.timeSync, "Delay-Time-Sync");
    add (engine.delay.mode, "Delay-Mode");
    add (engine.delay.feedback, "Delay-Feedback");
    add (engine.delay.mix, "Delay-Mix");
    add (arp.arpActive, "Arp-Active");
}

State::~State() = default;

void State::initialise()
{
    StateBase::initialise();
    sound.initialise();
}

void State::reflectContent (Reflector& reflector)
{
    reflector.addChild ("Patterns", sequencer);

    if (! reflector.context.isInstanceScope())
        return;

    reflector.addChild ("MidiPlayer", midiPlayer);
    reflector.addChild ("Synth", sound);
    reflector.addChild ("Octave", octaveRange);
    reflector.addChild ("UI", ui);
}

void State::rebuildIfSwingMoved()
{
    const auto swing = valueOf (*transport.swing);
    const auto swingRef = valueOf (*transport.swingRef);

    if (swing == lastSwing && swingRef == lastSwingRef)
        return;

    lastSwing = swing;
    lastSwingRef = swingRef;
    sequencer.rebuild();
}
} // namespace Orv::Audio::Plugins::Halvane
