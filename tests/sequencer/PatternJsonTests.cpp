#include "sequencer/modifiers/Empty.h"
#include "sequencer/modifiers/LoopFitter.h"
#include "sequencer/modifiers/ModRef.h"
#include "sequencer/modifiers/NoteList.h"
#include "sequencer/modifiers/Pattern.h"

#include "SequencerTestHelpers.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Orv::Sequencer;
using namespace Orv::Sequencer::Modifiers;
using namespace Orv::Testing;
using nlohmann::json;

namespace
{
StepPulseSequencer makeEditedSequence()
{
    StepPulseSequencer s;
    s.name = "edited";
    s.duration.mode = Duration::barsMode;
    s.duration.duration = 3.0;
    s.duration.time.bars = { { 3, 4 }, { 5, 8 } };
    s.length = 1.0;
    s.grid = 16;
    s.steps = { makeStep (0.0, 0.25, 60), makeStep (0.5, 0.125, 66) };
    s.steps[1].enabled = false;
    s.steps[1].event.velocity = 0.5f;
    s.steps[1].event.channel = 2;
    return s;
}

/** What a load of the saved object gives, saved again. */
template <typename Object>
json resaved (Object& object)
{
    auto copy = roundTrip (object);
    return save (copy);
}
} // namespace

TEST (PatternJson, StepSequenceFileForm)
{
    auto sequence = makeEditedSequence();
    const auto saved = save (sequence);

    EXPECT_EQ (saved["name"], "edited");
    EXPECT_EQ (saved["grid"], 16);
    EXPECT_FALSE (saved.contains ("duration")) << "only the child form is written";
    EXPECT_EQ (saved["Duration"]["mode"], 0);
    EXPECT_EQ (saved["Duration"]["Time"]["Bars"], json::parse (R"([{"num":3,"denum":4},{"num":5,"denum":8}])"));
    EXPECT_EQ (saved["Steps"][1], json::parse (R"({"enabled":false,"Time":{"start":0.5,"length":0.125},
                                                    "Event":{"noteNum":66,"velocity":0.5,"channel":2}})"));
    EXPECT_TRUE (saved["Steps"][0]["Event"]["velocity"].is_number_float());
    EXPECT_EQ (resaved (sequence), saved);
}

TEST (PatternJson, NestedKindsFileForm)
{
    LoopFitter fitter;
    fitter.name = "fitter";
    auto track = std::make_unique<TimedSteps>();
    track->mute = true;
    track->solo = true;
    track->duration.duration = 6.0;
    track->pulses.push_back (std::make_unique<StepPulseSequencer>());
    track->pulses[0]->steps.clear();
    track->pulses[0]->grid = 2;
    fitter.events.tracks.push_back (std::move (track));
    fitter.events.loopTime.bars = { { 7, 8 } };

    const auto fitterFile = json::parse (R"({"name": "fitter", "Events": {"name": "",
        "Sequences": [{"name": "", "mute": true, "solo": true,
            "Sequences": [{"name": "", "length": 0.98, "Steps": null, "grid": 2,
                "Duration": {"Time": {"Bars": [{"num": 4, "denum": 4}]}, "duration": 1.0, "mode": 1}}],
            "Duration": {"Time": {"Bars": [{"num": 4, "denum": 4}]}, "duration": 6.0, "mode": 0}}],
        "LoopTime": {"Bars": [{"num": 7, "denum": 8}]}}})");
    EXPECT_EQ (save (fitter), fitterFile);
    EXPECT_EQ (resaved (fitter), fitterFile);

    Pattern pattern;
    pattern.time.bars = { { 2, 4 } };
    pattern.clips.resize (1);
    pattern.clips[0].time = { 1.0, 2.0 };
    auto& clip = pattern.clips[0].clip;
    clip.enabled = false;
    clip.time = { 0.5, 1.0 };
    auto list = std::make_unique<NoteList>();
    list->time.bars = { { 3, 4 } };
    list->events = { makeStep (1.5, 2.0, 72) };
    list->events[0].event.velocity = 0.5f;
    clip.mod.set (std::move (list));

    const auto patternFile = json::parse (R"({"name": "", "Time": {"Bars": [{"num": 2, "denum": 4}]},
        "Clips": [{"name": "", "Time": {"start": 1.0, "length": 2.0},
            "Clip": {"name": "", "enabled": false, "Time": {"start": 0.5, "length": 1.0},
                "Mod": {"NoteList": {"name": "", "Time": {"Bars": [{"num": 3, "denum": 4}]},
                    "Events": [{"enabled": true, "Time": {"start": 1.5, "length": 2.0},
                                "Event": {"noteNum": 72, "velocity": 0.5, "channel": 1}}]}}}}]})");
    EXPECT_EQ (save (pattern), patternFile);
    EXPECT_EQ (resaved (pattern), patternFile);
}

TEST (PatternJson, ALoadTellsTheSequenceOnceAndReplacesTheWholeStepListAndTakesVelocityAsText)
{
    StepPulseSequencer sequence;
    sequence.steps = { makeStep (0.5, 0.5, 60), makeStep (0.0, 0.5, 61) };
    int told = 0;
    Orv::Events::Listener listener (sequence.getBroadcaster(), [&] { ++told; });

    load (json::parse (R"({"Steps":[{"enabled":true,"Event":{"velocity":"0.8"}}]})"), sequence);

    EXPECT_EQ (told, 1);
    ASSERT_EQ (sequence.steps.size(), 1u);
    EXPECT_EQ (sequence.steps[0].event.noteNum, 36) << "a loaded step starts from the defaults";
    EXPECT_EQ (sequence.steps[0].time, (Orv::Ranges::Span<double> { 0.0, 0.0 }));
    EXPECT_TRUE (sequence.steps[0].enabled);
    EXPECT_EQ (sequence.steps[0].event.velocity, 0.8f);
    EXPECT_TRUE (save (sequence)["Steps"][0]["Event"]["velocity"].is_number_float()) << "and is written as a number";

    load (json::parse (R"({"Steps":null})"), sequence);
    EXPECT_TRUE (sequence.steps.empty());
    EXPECT_EQ (told, 2);

    EXPECT_THROW (load (json::parse (R"({"Steps":[{"Event":{"velocity":"loud"}}]})"), sequence), std::invalid_argument);
}

TEST (PatternJson, AnOldBareDurationWinsOverTheChildAndAModeInTextMustBeANumber)
{
    const struct
    {
        const char* file;
        double duration;
        int mode;
    } cases[] = {
        { R"({"duration":2.5})", 2.5, Duration::explicitMode },
        { R"({"duration":2.5,"Duration":{"duration":7.0,"mode":0}})", 2.5, Duration::explicitMode },
        { R"({"duration":0,"Duration":{"duration":7.0,"mode":0}})", 0.0, Duration::explicitMode },
        { R"({"duration":-3,"Duration":{"duration":7.0,"mode":0}})", 7.0, Duration::barsMode },
        { R"({"Duration":{"duration":7.0,"mode":"0"}})", 7.0, Duration::barsMode },
        { R"({"Duration":{"mode":"2"}})", 1.0, 2 },
    };

    for (const auto& c : cases)
    {
        StepPulseSequencer sequence;
        sequence.duration.mode = 5;
        load (json::parse (c.file), sequence);
        EXPECT_EQ (sequence.duration.duration, c.duration) << c.file;
        EXPECT_EQ (sequence.duration.mode, c.mode) << c.file;
    }

    StepPulseSequencer sequence;
    EXPECT_THROW (load (json::parse (R"({"Duration":{"mode":"bars"}})"), sequence), std::invalid_argument);
    EXPECT_THROW (load (json::parse (R"({"Duration":{"mode":"99999999999999999999999"}})"), sequence), std::out_of_range);
}

TEST (PatternJson, BarsGrowWithNewBarsAsFourFourAndTellOnlyTheBarsBroadcaster)
{
    MusicalTime time;
    time.bars = { { 5, 8 } };
    std::vector<std::string> log;
    BroadcastLog bars (time.barsBroadcaster, "bars", log);
    BroadcastLog values (time.valueBroadcaster, "value", log);

    load (json::parse (R"({"Bars":[{"num":3},{"denum":16},{}]})"), time);

    EXPECT_EQ (time.bars, (std::vector<Bar> { { 3, 8 }, { 4, 16 }, { 4, 4 } }));
    EXPECT_EQ (log, (std::vector<std::string> { "bars" }));

    time.bars.clear();
    EXPECT_TRUE (save (time)["Bars"].is_null());
}

TEST (PatternJson, TheModKeyNamesTheKindAndALoadReplacesIt)
{
    Clip clip;
    EXPECT_TRUE (save (clip)["Mod"].is_null()) << "an Empty writes no kind";

    StepPulseSequencer target;
    clip.mod.set (std::make_unique<ModRef> (&target));
    EXPECT_TRUE (save (clip)["Mod"].is_null()) << "nor does a reference";

    const std::pair<const char*, std::function<std::unique_ptr<Base>()>> kinds[] = {
        { "StepPulseSeq", [] { return std::make_unique<StepPulseSequencer>(); } },
        { "LoopFitter", [] { return std::make_unique<LoopFitter>(); } },
        { "TimedSteps", [] { return std::make_unique<TimedSteps>(); } },
        { "Pattern", [] { return std::make_unique<Pattern>(); } },
        { "NoteList", [] { return std::make_unique<NoteList>(); } },
    };

    for (const auto& [key, make] : kinds)
    {
        clip.mod.set (make());
        clip.mod->name = key;
        const auto saved = save (clip);
        ASSERT_EQ (saved["Mod"].size(), 1u) << key;
        EXPECT_EQ (saved["Mod"][key]["name"], key);

        Clip loaded;
        loaded.mod.set (std::make_unique<TimedSteps>());
        load (saved, loaded);
        EXPECT_EQ (typeid (loaded.mod.get()), typeid (clip.mod.get())) << key;
        EXPECT_EQ (loaded.mod->name, key);
    }

    Clip kept;
    kept.mod.set (std::make_unique<NoteList>());
    load (json::parse (R"({"Mod":{"Unknown":{}}})"), kept);
    EXPECT_NE (dynamic_cast<NoteList*> (&kept.mod.get()), nullptr) << "an unknown kind is ignored";
}
