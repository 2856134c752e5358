#include "parameters/Parameter.h"

#include "persistence/ReflectMembers.h"

namespace Orv::Parameters
{
namespace
{
const std::string valueKey = "value";

constexpr float fullyOn = 1.0f;
constexpr float fullyOff = 0.0f;

// Zero decimal places asks JUCE for the plain, full-precision form.
juce::String plainNumberText (float value) { return juce::String (static_cast<double> (value), 0, false); }
} // namespace

void Parameter::setNormalised (float normalised) { setNormalisedNotifying (normalised); }

void Parameter::setInt (int value) { setFloat (static_cast<float> (value)); }

void Parameter::setBool (bool value) { setNormalisedNotifying (value ? fullyOn : fullyOff); }

void Parameter::setFloat (float value) { setNormalised (value); }

void Parameter::reflect (Reflector& reflector)
{
    juce::String text;

    if (! reflector.isLoading())
        text = getText();

    if (addMember (reflector, valueKey, text) && reflector.isLoading())
        setFromText (text);
}

juce::String Parameter::getName() const { return {}; }

juce::String Parameter::getTextFor (float) const { return plainNumberText (getNormalised()); }

juce::String Parameter::getText() const { return plainNumberText (getFloat()); }

juce::String Parameter::getTextForInt (int index) const
{
    if (! isDiscrete())
        return {};

    return getTextFor (static_cast<float> (index) / static_cast<float> (getNumChoices()));
}

void Parameter::setFromText (const juce::String& text) { setFloat (static_cast<float> (text.getDoubleValue())); }

MenuItems::Item Parameter::getMenuChoices()
{
    MenuItems::Item root;
    root.type = MenuItems::Item::subMenuRoot;

    if (! isDiscrete())
        return root;

    // The count is asked afresh on each pass: a parameter may change its
    // number of choices as entries are made.
    for (int i = 0; i < getNumChoices(); ++i)
    {
        MenuItems::Item entry;
        entry.type = MenuItems::Item::plainEntry;
        entry.name = getTextForInt (i);
        entry.func = [this, i] {
            beginGesture();
            setInt (i);
            endGesture();
        };
        entry.isSelected = [this, i] { return getInt() == i; };
        root.subItems.push_back (std::move (entry));
    }

    return root;
}

float Parameter::getFloat() const { return getNormalised(); }

int Parameter::getInt() const { return static_cast<int> (getFloat()); }

bool Parameter::getBool() const { return getNormalised() > boolThreshold; }

bool Parameter::isUndoable() const { return false; }

bool Parameter::isDiscrete() const { return false; }

int Parameter::getNumChoices() const { return unlimitedChoices; }

float Parameter::getDefaultNormalised() const { return 0.0f; }

void Parameter::beginGesture() {}

void Parameter::endGesture() {}
} // namespace Orv::Parameters
