#include "parameters/Connector.h"

namespace Orv::Parameters
{
Connector::Connector (Parameter* parameterToOwn) : target (parameterToOwn), owner (parameterToOwn) {}

Connector::Connector (const Connector& other) : Parameter(), target (other.target), owner (other.ownerForCopies()) {}

Connector& Connector::operator= (const Connector& other)
{
    if (this != &other)
    {
        target = other.target;
        owner = other.ownerForCopies();
    }

    return *this;
}

Connector::Connector (ReferOnly, Parameter& targetToUse) : target (&targetToUse) {}

Connector Connector::referringTo (Parameter& targetToUse) { return Connector (ReferOnly {}, targetToUse); }

std::shared_ptr<Parameter> Connector::ownerForCopies() const
{
    return target == owner.get() ? owner : nullptr;
}

//==============================================================================
float Connector::getNormalised() const { return target->getNormalised(); }
void Connector::setNormalised (float normalised) { target->setNormalised (normalised); }
void Connector::setInt (int value) { target->setInt (value); }
void Connector::setBool (bool value) { target->setBool (value); }
void Connector::setFloat (float value) { target->setFloat (value); }
juce::String Connector::getName() const { return target->getName(); }
juce::String Connector::getTextFor (float normalised) const { return target->getTextFor (normalised); }
juce::String Connector::getText() const { return target->getText(); }
juce::String Connector::getTextForInt (int index) const { return target->getTextForInt (index); }
void Connector::setFromText (const juce::String& text) { target->setFromText (text); }
void Connector::setNormalisedNotifying (float normalised) { target->setNormalisedNotifying (normalised); }
MenuItems::Item Connector::getMenuChoices() { return target->getMenuChoices(); }
float Connector::getFloat() const { return target->getFloat(); }
int Connector::getInt() const { return target->getInt(); }
bool Connector::getBool() const { return target->getBool(); }
bool Connector::isUndoable() const { return target->isUndoable(); }
bool Connector::isDiscrete() const { return target->isDiscrete(); }
int Connector::getNumChoices() const { return target->getNumChoices(); }
float Connector::getDefaultNormalised() const { return target->getDefaultNormalised(); }
bool Connector::isInGesture() const { return target->isInGesture(); }
void Connector::beginGesture() { target->beginGesture(); }
void Connector::endGesture() { target->endGesture(); }
} // namespace Orv::Parameters
