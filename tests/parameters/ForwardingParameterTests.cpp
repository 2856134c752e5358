#include "parameters/ForwardingParameter.h"
#include "parameters/ParamList.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Orv::Audio;

namespace
{
/** What a host's wrapper sees of a parameter: value changes and gestures. */
struct HostListener : juce::AudioProcessorParameter::Listener
{
    void parameterValueChanged (int, float value) override
    {
        ++changes;
        lastValue = value;
    }

    void parameterGestureChanged (int, bool starting) override { starting ? ++gestureStarts : ++gestureEnds; }

    std::atomic<int> changes { 0 };
    std::atomic<float> lastValue { -1.0f };
    int gestureStarts = 0;
    int gestureEnds = 0;
};

/** A real parameter with a host front, the way the flat list makes one. */
struct Fronted
{
    Fronted() { front.addListener (&host); }
    ~Fronted() { front.removeListener (&host); }

    ParamHolder<juce::AudioParameterFloat> inner { "KeyTracking", "Key Tracking", 0.0f, 2.0f, 1.0f };
    ParamList flat;
    ForwardingParameter& front { flat.addForwarder (inner, "Filter-Key-Tracking") };
    HostListener host;
};

juce::AudioProcessorParameter& base (juce::AudioProcessorParameter& p) { return p; }
} // namespace

TEST (ForwardingParameter, ShowsItsOwnIdAndNameAndForwardsValueTextAndDefault)
{
    Fronted f;
    auto& inner = base (*f.inner);

    EXPECT_EQ (f.front.getParameterID(), "Filter-Key-Tracking");
    EXPECT_EQ (f.front.getName (100), "Filter Key Tracking");
    EXPECT_EQ (f.front.getName (6), "Filter");
    EXPECT_EQ (f.front.getVersionHint(), 1);

    f.front.setValue (0.25f);
    EXPECT_FLOAT_EQ (f.inner->get(), 0.5f);
    EXPECT_FLOAT_EQ (f.front.getValue(), inner.getValue());
    EXPECT_EQ (f.front.getCurrentValueAsText(), "0.50");
    EXPECT_EQ (f.front.getText (1.0f, 100), "2.00");
    EXPECT_FLOAT_EQ (f.front.getValueForText ("1.5"), 0.75f);
    EXPECT_FLOAT_EQ (f.front.getDefaultValue(), 0.5f);

    f.front.displayName = {};
    EXPECT_EQ (f.front.getName (100), "Key Tracking");
}

TEST (ForwardingParameter, AdoptsATargetThatHasNoProcessor)
{
    Fronted f;
    EXPECT_TRUE (f.inner.adopted);
    EXPECT_GE (f.inner->getParameterIndex(), 0);
}

TEST (ForwardingParameter, TellsTheHostOfInnerChangesOnTheMessageThreadOnly)
{
    Fronted f;
    auto& inner = base (*f.inner);

    inner.setValueNotifyingHost (0.75f);
    EXPECT_EQ (f.host.changes.load(), 1);
    EXPECT_FLOAT_EQ (f.host.lastValue.load(), 0.75f);

    std::thread audio ([&] { inner.setValueNotifyingHost (0.1f); });
    audio.join();

    EXPECT_EQ (f.host.changes.load(), 1);
    EXPECT_FLOAT_EQ (f.front.getValue(), 0.1f); // a host that polls still sees it
}

TEST (ForwardingParameter, PassesGesturesOfTheInnerParameterOn)
{
    Fronted f;
    base (*f.inner).beginChangeGesture();
    base (*f.inner).endChangeGesture();

    EXPECT_EQ (f.host.gestureStarts, 1);
    EXPECT_EQ (f.host.gestureEnds, 1);
}
