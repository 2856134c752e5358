#pragma once

#include "core/CallbackFunc.h"
#include "parameters/IntLike.h"
#include "sequencer/modifiers/MusicalTime.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <vector>

namespace Orv::Audio::Plugins::Halvane
{
/** The denominator of a live pattern's length as a choice of eight note
    values, 2 to 256. The value is the index of the choice. A change tells the
    time's valueBroadcaster, then its barsBroadcaster, then runs onUpdate.

    Holds plain pointers into the pattern; message thread only. */
class DenumParam : public Parameters::IntLike
{
public:
    static constexpr int numChoices = 8;
    /** The index an unknown denominator reads as, and the default. */
    static constexpr int fallbackReadIndex = 1;
    /** The denominator an index past the table writes. */
    static constexpr int fallbackDenum = 4;

    DenumParam (Sequencer::Modifiers::MusicalTime& timeToTell, Sequencer::Modifiers::Bar& barToEdit);

    /** Message thread only: the denominator for an index; fallbackDenum past the table. */
    static int denumForIndex (int index) noexcept;

    /** Message thread only: the index of a denominator; fallbackReadIndex if none. */
    static int indexForDenum (int denum) noexcept;

    static juce::NormalisableRange<float> getRange();

    /** Message thread only: the index's place in 0 to 7. */
    float getNormalised() const override;

    /** Message thread only: the range's index for the position, then setInt. */
    void setNormalisedNotifying (float normalised) override;

    /** Message thread only: stores the denominator of the index, if it differs. */
    void setInt (int index) override;

    /** Message thread only: truncates, then setInt. */
    void setFloat (float index) override;

    /** Message thread only: the index. */
    float getFloat() const override;

    juce::String getTextFor (float normalised) const override;
    /** Message thread only: the stored denominator, in the table or not. */
    juce::String getText() const override;
    juce::String getTextForInt (int index) const override;
    bool isDiscrete() const override { return true; }
    int getNumChoices() const override { return numChoices; }
    float getDefaultNormalised() const override;

    /** The texts of the eight choices. */
    static std::vector<juce::String> getAllChoices();

    /** Runs after the broadcasters on each change; empty does nothing. */
    CallbackFunc onUpdate;

private:
    Sequencer::Modifiers::MusicalTime* time;
    Sequencer::Modifiers::Bar* bar;
};
} // namespace Orv::Audio::Plugins::Halvane
