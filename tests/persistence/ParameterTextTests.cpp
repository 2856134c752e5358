#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "persistence/ParameterText.h"

#include <gtest/gtest.h>
#include <juce_audio_processors/juce_audio_processors.h>

using namespace Orv;
using nlohmann::json;

namespace
{
/** Two host parameters as a parameter list would hold them. */
struct TwoParameters
{
    juce::AudioParameterChoice swingRef { juce::ParameterID { "SwingRef", 1 }, "Swing Ref", { "1/4", "1/8", "1/16" }, 1 };
    juce::AudioParameterFloat gain { juce::ParameterID { "Gain", 1 }, "Gain", { 0.0f, 10.0f }, 5.0f,
                                     juce::AudioParameterFloatAttributes().withStringFromValueFunction (
                                         [] (float v, int) { return juce::String (v, 2); }) };

    void reflect (Reflector& r)
    {
        // JUCE's parameter classes hide these functions; a list holds them by their base.
        juce::AudioProcessorParameter& swingRefBase = swingRef;
        juce::AudioProcessorParameter& gainBase = gain;

        if (r.isLoading())
        {
            Serializing::resetToDefault (swingRefBase);
            Serializing::resetToDefault (gainBase);
        }

        Serializing::addParameterText (r, "SwingRef", swingRefBase);
        Serializing::addParameterText (r, "Gain", gainBase);
    }
};
} // namespace

TEST (ParameterText, SavesTheDisplayText)
{
    TwoParameters params;
    params.swingRef = 2;
    params.gain = 4753.56f / 1000.0f;

    EXPECT_EQ (Json::toJson (params, {}), json::parse (R"({"Gain": "4.75", "SwingRef": "1/16"})"));
}

TEST (ParameterText, LoadsThroughTheParameterParserAndMissingKeysGiveTheDefault)
{
    TwoParameters params;
    params.swingRef = 2;
    params.gain = 9.0f;

    auto file = json::parse (R"({"SwingRef": "1/4"})");
    Json::fromJson (file, params, {});
    EXPECT_EQ (params.swingRef.getIndex(), 0);
    EXPECT_FLOAT_EQ (params.gain.get(), 5.0f);

    auto numbers = json::parse (R"({"Gain": 2.5})");
    Json::fromJson (numbers, params, {});
    EXPECT_FLOAT_EQ (params.gain.get(), 2.5f);
}

TEST (ParameterText, SelectionFollowsTheScope)
{
    // (inPreset, inState) = (true, false): in presets only.
    EXPECT_TRUE (Serializing::isParameterSelected (ReflectContext::forPreset(), true, false));
    EXPECT_FALSE (Serializing::isParameterSelected (ReflectContext::forHostState(), true, false));
    EXPECT_FALSE (Serializing::isParameterSelected (ReflectContext::forUndo(), true, false));
    EXPECT_TRUE (Serializing::isParameterSelected (ReflectContext::forUndo(), false, true));
}
