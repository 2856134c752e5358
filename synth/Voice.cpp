#include "synth/Voice.h"

#include "synth/FilterParams.h"
#include "synth/OscillatorParams.h"
#include "synth/SampleList.h"
#include "synth/SubOSCParams.h"
#include "synth/SubTable.h"
#include "synth/TableReader.h"
#include "synth/UnisonRecord.h"

#include <cmath>

namespace Orv::Audio::WavetableSynth
{
namespace
{
    constexpr double a4 = 440.0;
    constexpr double a4Octaves = 5.75; // note 69 / 12
    constexpr double semitonesPerOctave = 12.0;

    // The sub's pitch in double precision, by these constants exactly:
    // 12 / ln 2, 1 / 440 and 1 / 12.
    constexpr double a4Note = 69.0;
    constexpr double semitonesPerNeper = 17.31234049066756;
    constexpr double inverseA4 = 0.0022727272727272726;
    constexpr double octavesPerSemitone = 0.08333333333333333;

    // A sub at 0 dB sits 20 dB below it.
    constexpr float subLevel = 0.1f;

    // Velocity 0 to 16383 maps to 0.1 to 1.0.
    constexpr float velocitySlope = 5.4934993e-5f;
    constexpr float velocityFloor = 0.1f;

    // A cutoff knob at the very top means "open": the filter is left out
    // rather than run at the top of its range.
    constexpr float openCutoff = 0.999f;
} // namespace

void Voice::prepare (int numChannels, double sampleRate, int maxBlockSize)
{
    // Made here, off the audio thread, before any render asks for it.
    SubTable::getInstance();

    subPhases.assign ((size_t) maxBlockSize, 0.0);
    subInverseRate = 1.0 / sampleRate;
    subSampleRate = sampleRate;
    subSmoother.reset (sampleRate);

    if (voiceBuffer.getNumChannels() != numChannels || voiceBuffer.getNumSamples() != maxBlockSize)
        voiceBuffer.setSize (numChannels, maxBlockSize);

    for (auto& oscillator : oscillators)
        oscillator.prepare (numChannels, sampleRate, maxBlockSize);

    filter.prepare (sampleRate);
}

float Voice::noteFrequency() const noexcept
{
    const auto& note = getCurrentlyPlayingNote();
    const auto pitch = (double) note.initialNote + note.totalPitchbendInSemitones;
    return (float) (a4 * std::pow (2.0, pitch / semitonesPerOctave - a4Octaves));
}

void Voice::onNoteStarted()
{
    filter.reset();
    frequency = noteFrequency();

    if (lists != nullptr && lists->oscillators != nullptr)
    {
        for (size_t k = 0; k < oscillators.size(); ++k)
        {
            const auto& params = lists->oscillators->osc[k];
            oscillators[k].start (getUnisonRecords (params, frequency), params.volume->get());
        }
    }

    if (lists != nullptr && lists->sub != nullptr)
        subSmoother.setCurrentAndTarget (lists->sub->subVolume->get() * subLevel);
    subPhase = 0.0;

    velocityGain = (float) getCurrentlyPlayingNote().noteOnVelocity.as14BitInt() * velocitySlope + velocityFloor;
}

void Voice::notePitchbendChanged() { frequency = noteFrequency(); }

void Voice::renderVoice (juce::AudioBuffer<float>& block)
{
    if (lists == nullptr || lists->oscillators == nullptr || lists->sub == nullptr || lists->filter == nullptr)
        return;

    const auto numSamples = juce::jmin (block.getNumSamples(), voiceBuffer.getNumSamples());
    juce::AudioBuffer<float> mix (voiceBuffer.getArrayOfWritePointers(), voiceBuffer.getNumChannels(), 0, numSamples);

    renderOscillators (block, mix);
    renderSub (block, mix);
    applyFilter (block);
    block.applyGain (velocityGain);
}

void Voice::renderOscillators (juce::AudioBuffer<float>& block, juce::AudioBuffer<float>& mix)
{
    const auto& tables = SampleList::getInstance();
    const auto numSamples = mix.getNumSamples();
    const auto numChannels = juce::jmin (block.getNumChannels(), mix.getNumChannels());

    for (size_t k = 0; k < oscillators.size(); ++k)
    {
        const auto& params = lists->oscillators->osc[k];
        if (! params.enable->get())
            continue;

        auto& oscillator = oscillators[k];
        mix.clear();

        // The index comes from a choice made from the same list; the check
        // only keeps an empty list silent.
        const auto index = params.type->getIndex();
        if (juce::isPositiveAndBelow (index, (int) tables.size()))
            oscillator.render (tables[(size_t) index].samples, getUnisonRecords (params, frequency),
                               params.unison->unison->get(), mix);

        // The ramp runs on the oscillator's own buffer after the mix has been
        // taken, so the level heard is the block's plain Volume and steps at
        // block edges; a ramp here would change how existing sounds respond
        // to automation.
        const auto volume = params.volume->get();
        oscillator.applyVolume (volume, numSamples);

        if (volume > 0.0f)
            for (int c = 0; c < numChannels; ++c)
                block.addFrom (c, 0, mix, c, 0, numSamples, volume);
    }
}

void Voice::renderSub (juce::AudioBuffer<float>& block, juce::AudioBuffer<float>& mix)
{
    const auto numSamples = mix.getNumSamples();
    const auto numChannels = juce::jmin (block.getNumChannels(), mix.getNumChannels());
    const auto& params = *lists->sub;

    mix.clear();
    if (numSamples < 1 || numChannels < 1)
        return;

    const auto note = a4Note + semitonesPerNeper * std::log ((double) frequency * inverseA4)
                    + semitonesPerOctave * params.subOctave->get();
    const auto ratio = std::pow (2.0, note * octavesPerSemitone - a4Octaves);
    TableReader::runPhases (subPhases.data(), numSamples, subPhase, a4 * ratio * subInverseRate);

    const auto& table = SubTable::getInstance();
    TableReader::read (table.getReadPointer (0), table.getNumSamples(), subPhases.data(), mix.getWritePointer (0), numSamples);
    for (int c = 1; c < mix.getNumChannels(); ++c)
        mix.copyFrom (c, 0, mix, 0, 0, numSamples);

    subSmoother.setTarget (params.subVolume->get() * subLevel);
    subSmoother.applyGain (mix, numSamples);

    for (int c = 0; c < numChannels; ++c)
        block.addFrom (c, 0, mix, c, 0, numSamples);
}

void Voice::applyFilter (juce::AudioBuffer<float>& block)
{
    const auto& params = *lists->filter;
    const juce::AudioProcessorParameter& cutoff = *params.cutoff;
    if (! params.enable->get() || cutoff.getValue() >= openCutoff)
        return;

    // Key tracking adds the note's frequency in Hz, not a ratio.
    filter.setParameters (params.cutoff->get() + params.keyTracking->get() * frequency, params.resonance->get());
    filter.processBlock (block);
}
} // namespace Orv::Audio::WavetableSynth
