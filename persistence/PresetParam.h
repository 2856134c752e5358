#pragma once

#include "parameters/DefaultGesture.h"
#include "persistence/PresetBase.h"

namespace Orv::Presets
{
/** A preset's library as one control: the position of the current file in
    the flat list as a value from 0 to 1, the preset's name as text, and a
    step to the next or previous file. The value is found in the list each
    time, so any number of these may stand over one preset.

    Message thread only. */
class Param : public Parameters::DefaultGesture
{
public:
    /** The index of a preset that is no file of the list. */
    static constexpr int noMatch = -1;

    /** The preset must outlive the parameter. */
    explicit Param (Base& presetToUse);

    /** The first entry of the flat list with the preset's id and a file name,
        up to its last dot, equal to the preset's name; noMatch otherwise. */
    int getIndex() const;

    /** Loads the file that lies delta entries away, wrapping round the list.
        From no match, +1 gives the first file and -1 the last. An empty list
        does nothing. */
    void step (int delta);

    //==============================================================================
    juce::String getName() const override;

    /** index / (count - 1); 0 for a list of one; -1 when nothing matches. */
    float getNormalised() const override;

    /** Loads the entry at int (count * value), the last one for 1.0 or a
        negative index, wrapping past the end. */
    void setNormalisedNotifying (float normalised) override;

    /** The preset's name, with "*" behind it while it is dirty. */
    juce::String getText() const override;

    /** The name of the file at that position of the list. */
    juce::String getTextFor (float normalised) const override;

    bool isDiscrete() const override { return true; }
    int getNumChoices() const override;
    float getDefaultNormalised() const override { return 0.0f; }

private:
    int indexFor (float normalised) const;
    void loadAt (int index);

    Base* preset;
};
} // namespace Orv::Presets
