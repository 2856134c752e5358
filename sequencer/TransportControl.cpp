#include "sequencer/TransportControl.h"

#include "persistence/ParameterText.h"

namespace Orv::Sequencer
{
namespace
{
    const juce::String swingRefId = "SwingRef";
    // The swing period of each choice is in Swing.cpp, by index.
    const juce::StringArray swingRefChoices { "1/8", "1/4", "1/2" };
    constexpr int defaultSwingRef = 0;

    const std::string valueKey = "Value";

    /** A host parameter as its own child, the way the transport's file holds
        the swing settings. JUCE's parameter classes hide the value calls that
        their base makes public, hence the base. */
    struct ParameterChild
    {
        juce::AudioProcessorParameter& parameter;

        void reflect (Reflector& reflector) { Serializing::addParameterText (reflector, valueKey, parameter); }
    };

    void addParameterChild (Reflector& reflector, const std::string& key, juce::AudioProcessorParameter& parameter)
    {
        ParameterChild child { parameter };
        reflector.addChild (key, child);
    }
} // namespace

TransportControl::TransportControl()
    : swingRef (swingRefId, swingRefId, swingRefChoices, defaultSwingRef)
{
}

TransportControl::~TransportControl() = default;

void TransportControl::reflect (Reflector& reflector)
{
    reflector.addChild ("BPM", bpm);
    addParameterChild (reflector, "Swing", *swing);
    addParameterChild (reflector, "SwingRef", *swingRef);
}

SwingPair TransportControl::swingPair() const
{
    const juce::AudioProcessorParameter& swingValue = *swing;
    return makeSwingPair (swingValue.getValue(), swingRef->getIndex());
}
} // namespace Orv::Sequencer
