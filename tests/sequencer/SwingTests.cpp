#include "sequencer/Swing.h"
#include "sequencer/TransportControl.h"

#include "SequencerTestHelpers.h"

#include <gtest/gtest.h>

using namespace Orv::Sequencer;
using Orv::Testing::load;
using Orv::Testing::save;
using nlohmann::json;

namespace
{
/** The normalised value of a swing amount in percent. */
float swingAt (int percent)
{
    SwingParam param;
    const juce::AudioProcessorParameter& asHost = param;
    return asHost.getValueForText (juce::String (percent));
}
} // namespace

TEST (Swing, ControlEndsAreCompressedAndReferenceGivesPeriod)
{
    struct Case { float normalised; int reference; double middle; double period; };
    const Case cases[] = {
        { swingAt (0), 0, 0.5, 0.5 },
        { swingAt (200), 1, 0.8995, 1.0 },
        { swingAt (-200), 2, 0.1005, 2.0 },
        { 0.8f, 3, 0.8, 1.0 },
        { 0.9f, -1, 0.85, 1.0 },
        { 0.1f, 0, 0.15, 0.5 },
    };

    for (const auto& c : cases)
    {
        const auto pair = makeSwingPair (c.normalised, c.reference);
        EXPECT_NEAR (pair.middle, c.middle, 1e-7) << c.normalised;
        EXPECT_EQ (pair.period, c.period) << c.reference;
    }
}

TEST (Swing, CurveBendsInsideEachPeriodAndKeepsItsEnds)
{
    struct Case { double middle; double period; double time; double expected; };
    const Case cases[] = {
        { 0.75, 1.0, 0.5, 0.75 },
        { 0.75, 1.0, 1.0, 1.0 },
        { 0.75, 1.0, 0.0, 0.0 },
        { 0.75, 1.0, 2.5, 2.75 },
        { 0.25, 0.5, 0.25, 0.125 },
        { 0.75, 0.5, 3.0, 3.0 },
        { 0.75, 1.0, -0.5, 0.0 }, // a negative remainder jumps to its period's start
        { 0.5, 1.0, 0.37, 0.37 },
        { 0.5, 0.5, 1.234, 1.234 },
    };

    for (const auto& c : cases)
        EXPECT_NEAR (swungTime (c.middle, c.period, c.time), c.expected, 1e-12) << c.middle << " " << c.time;
}

TEST (Swing, SwingParameterTextAndLimits)
{
    SwingParam param;
    juce::AudioProcessorParameter& asHost = param;

    EXPECT_EQ (asHost.getValue(), 0.5f);
    EXPECT_EQ (asHost.getText (asHost.getValueForText ("-40%"), 16), "-40%");
    EXPECT_EQ (asHost.getText (asHost.getValueForText ("35"), 16), "35%");
    EXPECT_EQ (asHost.getValueForText ("999%"), 1.0f);
    EXPECT_EQ (asHost.getValueForText ("-999"), 0.0f);
    EXPECT_EQ (param.getParameterID(), "Swing");
    EXPECT_EQ (param.getName (16), "Swing");
}

TEST (Swing, TypedTempoSnapsToItsIntervalAndShowsWholeBeats)
{
    struct Case { const char* typed; float stored; const char* text; };
    const Case cases[] = {
        { "120.00004", 120.0f, "120" },
        { "120.00006", 120.0001f, "120" },
        { "99.99", 99.99f, "99" },
        { "0.2", 1.0f, "1" },
        { "-5", 1.0f, "1" },
        { "5000", 999.0f, "999" },
        { "tempo", 1.0f, "1" },
    };

    for (const auto& c : cases)
    {
        BPMParameter bpm;
        bpm.setFromText (c.typed);
        EXPECT_EQ (bpm.getFloat(), c.stored) << c.typed;
        EXPECT_EQ (bpm.getText(), c.text) << c.typed;
    }
}

TEST (Swing, TempoControlIsSkewedAroundItsDefault)
{
    BPMParameter bpm;
    EXPECT_NEAR (bpm.getFloat(), 100.0f, 1e-4f);
    EXPECT_EQ (bpm.getText(), "100");

    bpm.setNormalised (0.5f);
    EXPECT_NEAR (bpm.getFloat(), 150.0f, 1.0f);
    EXPECT_NEAR (bpm.getNormalised(), 0.5f, 1e-6f);

    bpm.setFloat (2000.0f);
    EXPECT_EQ (bpm.getFloat(), 999.0f);
    EXPECT_EQ (bpm.getTextFor (0.0f), "1");
}

TEST (Swing, TransportFileFormAndRoundTrip)
{
    TransportControl transport;
    transport.bpm.setFromText ("120.5");
    juce::AudioProcessorParameter& swing = *transport.swing;
    swing.setValue (swing.getValueForText ("-40%"));

    const auto saved = save (transport);
    EXPECT_EQ (saved, json::parse (R"({"BPM": {"value": "120"}, "Swing": {"Value": "-40%"}, "SwingRef": {"Value": "1/8"}})"));

    TransportControl loaded;
    load (json::parse (R"({"BPM": {"value": 87}, "Swing": {"Value": "25%"}, "SwingRef": {"Value": "1/2"}})"), loaded);
    EXPECT_EQ (loaded.tempo.load(), 87.0f) << "the block's tempo is the parameter's word";
    EXPECT_EQ (loaded.swing->get(), 25);
    EXPECT_EQ (loaded.swingPair().period, 2.0);

    load (json::parse (R"({"Swing": {"Value": "10%"}})"), loaded);
    EXPECT_EQ (loaded.bpm.getText(), "87") << "a missing key leaves the member";
    EXPECT_EQ (loaded.swingRef->getIndex(), 2);
}
