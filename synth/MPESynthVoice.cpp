#include "synth/MPESynthVoice.h"

namespace Orv::Audio
{
namespace
{
    constexpr int firstChannel = 1;
    constexpr int lastChannel = 16;
} // namespace

bool MPESynthVoice::isActive() const
{
    // The note number is unsigned, so a note on a real channel is a note.
    const auto channel = (int) currentlyPlayingNote.midiChannel;
    return channel >= firstChannel && channel <= lastChannel;
}

void MPESynthVoice::noteStarted() { onNoteStarted(); }

void MPESynthVoice::noteStopped (bool allowTailOff)
{
    onNoteStopped();
    if (! allowTailOff)
        clearNote();
}

void MPESynthVoice::renderNextBlock (juce::AudioBuffer<float>& buffer, int startSample, int numSamples)
{
    // An alias holds pointers only, up to JUCE's preallocated channel space;
    // a stereo voice never reaches it, so this allocates nothing.
    juce::AudioBuffer<float> block (buffer.getArrayOfWritePointers(), buffer.getNumChannels(), startSample, numSamples);
    processBlock (block);
    active.store (isActive(), std::memory_order_relaxed);
}

void MPESynthVoice::setCurrentSampleRate (double newRate) { currentSampleRate = newRate; }

void MPESynthVoice::processBlock (juce::AudioBuffer<float>& block) { renderVoice (block); }
} // namespace Orv::Audio
