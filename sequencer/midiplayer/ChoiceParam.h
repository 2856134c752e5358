#pragma once

#include "core/Binaries.h"
#include "parameters/IntLike.h"
#include "sequencer/midiplayer/State.h"

#include <vector>

namespace Orv::Sequencer::MidiPlayer
{
/** The choice of built-in clip, named "MidiFiles": a control of the GUI only,
    never a host parameter. Its value is the index of the clip that plays in
    the list of built-in clips; a file from outside, or none, has no index.
    The value is read from the state each time, so that any number of these
    may stand over one state.

    Message thread only. */
class ChoiceParam : public Parameters::IntLike
{
public:
    /** The index of a state whose clip is no built-in one. */
    static constexpr int noClip = -1;
    /** What separates the levels of the menu in a clip's name. */
    static constexpr const char* levelSeparator = " - ";
    static constexpr const char* clipExtension = ".mid";

    /** One built-in clip: its file name and its bytes. */
    using Entry = Binaries::BinaryInfo;

    /** Any thread: the built-in clips, made once from the embedded files
        whose names end in ".mid", in the table's order. */
    static const std::vector<Entry>& getClips();

    /** The state must outlive the parameter. */
    explicit ChoiceParam (State& stateToUse);

    /** The index of the clip that plays, or noClip. */
    int getIndex() const;

    /** Plays the clip of that index; an index past either end goes round to
        the other, as arrows stepping through the list expect. */
    void setValue (int index);

    //==============================================================================
    juce::String getName() const override;
    float getNormalised() const override;
    /** The nearest index of the position in the list, then setValue. */
    void setNormalisedNotifying (float normalised) override;
    void setInt (int index) override { setValue (index); }
    void setFloat (float index) override;
    float getFloat() const override { return (float) getIndex(); }
    /** The clip's name, or the file's name for a file from outside. */
    juce::String getText() const override;
    juce::String getTextFor (float normalised) const override;
    /** A clip's name without its extension. */
    juce::String getTextForInt (int index) const override;
    bool isDiscrete() const override { return true; }
    int getNumChoices() const override { return (int) getClips().size(); }
    float getDefaultNormalised() const override { return 0.0f; }

    /** The clips as a tree: each name is split at " - ", every part but the
        last a submenu in the order of first appearance, the last an entry
        that plays its clip and is ticked while that clip plays. */
    MenuItems::Item getMenuChoices() override;

private:
    int indexForNormalised (float normalised) const;

    State* state;
};
} // namespace Orv::Sequencer::MidiPlayer
