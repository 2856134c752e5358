#pragma once

#include "synth/Filter.h"
#include "synth/ListPointers.h"
#include "synth/MPEVoiceWithADSR.h"
#include "synth/Oscillator.h"
#include "synth/Smoother.h"

#include <array>
#include <vector>

namespace Orv::Audio::WavetableSynth
{
/** One note of the wavetable synth: four oscillators and a sine sub an
    octave or more below, through a two-stage low-pass, scaled by velocity and
    then by the envelope. Parameters are read afresh at each sub-block, so a
    pitch bend or a change of wave takes effect at the next split.

    Audio thread, apart from prepare(), which allocates. */
class Voice : public MPEVoiceWithADSR
{
public:
    static constexpr int numOscillators = 4;
    static constexpr double subRampSeconds = 0.1;
    static constexpr int filterStages = 2;
    static constexpr float initialCutoff = 1000.0f;
    static constexpr float initialResonance = 0.1f;

    Voice() = default;

    void prepare (int numChannels, double sampleRate, int maxBlockSize) override;
    void renderVoice (juce::AudioBuffer<float>& block) override;
    void onNoteStarted() override;
    void notePitchbendChanged() override;

    /** The note's pitch with its bend, in Hz. */
    float noteFrequency() const noexcept;

    const ListPointers* lists = nullptr;
    juce::AudioBuffer<float> voiceBuffer;
    float frequency = 0.0f;
    float velocityGain = 0.0f;
    std::array<Oscillator, numOscillators> oscillators;
    Smoother subSmoother { subRampSeconds };
    double subSampleRate = 0.0;
    double subInverseRate = 0.0;
    double subPhase = 0.0;
    std::vector<double> subPhases;
    Filter filter { filterStages, initialCutoff, initialResonance };

private:
    void renderOscillators (juce::AudioBuffer<float>& block, juce::AudioBuffer<float>& mix);
    void renderSub (juce::AudioBuffer<float>& block, juce::AudioBuffer<float>& mix);
    void applyFilter (juce::AudioBuffer<float>& block);
};
} // namespace Orv::Audio::WavetableSynth
