#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

namespace Orv::Audio
{
/** Which busy voice a new note takes when none is free. The lowest and the
    highest held notes are protected, since they carry a chord's bass and
    melody; a voice already playing the same note is retaken first; then
    released tails go before held keys, and older notes before newer ones. */
struct DefaultVoiceStealer
{
    /** Audio thread; allocates nothing. voices is the synth's array, all of
        them busy; oldestFirst is scratch space for numVoices pointers, which
        is left sorted by note-on time. Null only when there are no voices. */
    template <typename Voice>
    static Voice* findVoiceToSteal (Voice* voices, int numVoices, Voice** oldestFirst, const juce::MPENote& note) noexcept
    {
        if (numVoices < 1)
            return nullptr;

        Voice* low = nullptr;
        Voice* top = nullptr;

        for (int i = 0; i < numVoices; ++i)
        {
            auto* voice = voices + i;

            // Stable insertion: among equal times the earlier voice stays first.
            int j = i;
            for (; j > 0 && oldestFirst[j - 1]->noteOnTime > voice->noteOnTime; --j)
                oldestFirst[j] = oldestFirst[j - 1];
            oldestFirst[j] = voice;

            if (isReleased (*voice))
                continue;

            const auto number = voice->getCurrentlyPlayingNote().initialNote;
            if (low == nullptr || number < low->getCurrentlyPlayingNote().initialNote)
                low = voice;
            if (top == nullptr || number > top->getCurrentlyPlayingNote().initialNote)
                top = voice;
        }

        // One protected note is enough when a single note is held.
        if (low == top)
            top = nullptr;

        if (isOnAChannel (note))
            for (int i = 0; i < numVoices; ++i)
                if (oldestFirst[i]->getCurrentlyPlayingNote().initialNote == note.initialNote)
                    return oldestFirst[i];

        const auto firstUnprotected = [&] (auto&& passes) -> Voice* {
            for (int i = 0; i < numVoices; ++i)
            {
                auto* voice = oldestFirst[i];
                if (voice != low && voice != top && passes (*voice))
                    return voice;
            }
            return nullptr;
        };

        if (auto* voice = firstUnprotected ([] (const Voice& v) { return isReleased (v); }))
            return voice;

        if (auto* voice = firstUnprotected ([] (const Voice& v) {
                const auto keyState = v.getCurrentlyPlayingNote().keyState;
                return keyState != juce::MPENote::keyDown && keyState != juce::MPENote::keyDownAndSustained;
            }))
            return voice;

        if (auto* voice = firstUnprotected ([] (const Voice&) { return true; }))
            return voice;

        return top != nullptr ? top : low;
    }

private:
    static constexpr int firstChannel = 1;
    static constexpr int lastChannel = 16;

    template <typename Voice>
    static bool isReleased (const Voice& voice) noexcept
    {
        return voice.isActive() && voice.getCurrentlyPlayingNote().keyState == juce::MPENote::off;
    }

    static bool isOnAChannel (const juce::MPENote& note) noexcept
    {
        return note.midiChannel >= firstChannel && note.midiChannel <= lastChannel;
    }
};
} // namespace Orv::Audio
