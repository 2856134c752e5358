#include "persistence/ChildContainerSerializer.h"
#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "persistence/ReflectMembers.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

using namespace Orv;
using nlohmann::json;

namespace
{
/** An element with one field that files carry and one they never do. */
struct Step
{
    int note = 0;
    int unsaved = -1;
    void reflect (Reflector& r) { addMember (r, "note", note); }
};

template <typename Container>
struct Holder
{
    Container steps;
    bool clearFirst = false;

    void reflect (Reflector& r)
    {
        ChildContainerSerializer<Container> (steps, "Steps", "Step", clearFirst).add (r);
    }
};

/** {"Steps": [{"note": first}, {"note": first + 1}, ...]} with count elements. */
json stepsJson (int count, int first)
{
    auto steps = json::array();

    for (int i = 0; i < count; ++i)
        steps.push_back ({ { "note", first + i } });

    return { { "Steps", steps } };
}

/** A vector of count steps whose fields mark them as pre-existing. */
std::vector<Step> existing (int count)
{
    std::vector<Step> steps (static_cast<size_t> (count));

    for (int i = 0; i < count; ++i)
        steps[static_cast<size_t> (i)] = { 100 + i, 200 + i };

    return steps;
}
} // namespace

TEST (ChildContainerSerializer, SavesElementsInOrderAndAnEmptyContainerAsNull)
{
    Holder<std::vector<Step>> holder;
    holder.steps = { { 5, 0 }, { 7, 0 } };
    EXPECT_EQ (Json::toJson (holder, {}), json::parse (R"({"Steps": [{"note": 5}, {"note": 7}]})"));

    holder.steps.clear();
    EXPECT_EQ (Json::toJson (holder, {}), json::parse (R"({"Steps": null})"));
}

TEST (ChildContainerSerializer, LoadSizesToTheFileKeepingFrontElementsFields)
{
    struct Case
    {
        int before, inFile;
    };

    for (const auto [before, inFile] : { Case { 3, 5 }, Case { 8, 2 }, Case { 4, 0 } })
    {
        Holder<std::vector<Step>> holder;
        holder.steps = existing (before);
        auto file = stepsJson (inFile, 0);
        Json::fromJson (file, holder, {});

        ASSERT_EQ (holder.steps.size(), static_cast<size_t> (inFile)) << before << " -> " << inFile;

        for (int i = 0; i < inFile; ++i)
        {
            const auto& step = holder.steps[static_cast<size_t> (i)];
            EXPECT_EQ (step.note, i);
            EXPECT_EQ (step.unsaved, i < before ? 200 + i : -1) << before << " -> " << inFile << " at " << i;
        }
    }
}

TEST (ChildContainerSerializer, NullEmptiesTheContainerAndAbsenceKeepsIt)
{
    Holder<std::vector<Step>> holder;
    holder.steps = existing (3);

    auto absent = json::object();
    Json::fromJson (absent, holder, {});
    EXPECT_EQ (holder.steps.size(), 3u);

    auto null = json::parse (R"({"Steps": null})");
    Json::fromJson (null, holder, {});
    EXPECT_TRUE (holder.steps.empty());
}

TEST (ChildContainerSerializer, ClearFirstGivesDefaultElements)
{
    Holder<std::vector<Step>> holder;
    holder.steps = existing (3);
    holder.clearFirst = true;
    auto file = stepsJson (2, 0);
    Json::fromJson (file, holder, {});

    ASSERT_EQ (holder.steps.size(), 2u);
    EXPECT_EQ (holder.steps[0].unsaved, -1);
    EXPECT_EQ (holder.steps[1].unsaved, -1);
}

TEST (ChildContainerSerializer, OwnedElementsAreMadeOnLoadAndKeptWhenPresent)
{
    Holder<OwnedVector<Step>> holder;
    holder.steps.push_back (std::make_unique<Step> (Step { 100, 200 }));
    auto* firstBefore = holder.steps[0].get();

    auto file = stepsJson (3, 10);
    Json::fromJson (file, holder, {});

    ASSERT_EQ (holder.steps.size(), 3u);
    EXPECT_EQ (holder.steps[0].get(), firstBefore);
    EXPECT_EQ (holder.steps[0]->unsaved, 200);

    for (size_t i = 0; i < 3; ++i)
    {
        ASSERT_NE (holder.steps[i], nullptr);
        EXPECT_EQ (holder.steps[i]->note, 10 + static_cast<int> (i));
    }

    EXPECT_EQ (Json::toJson (holder, {}), file);
}

TEST (ChildContainerSerializer, ALoadThatThrowsHalfwayLeavesNoEmptyOwnedElement)
{
    struct Timed
    {
        double start = 0.0;
        void reflect (Reflector& r) { addMember (r, "start", start); }
    };

    Holder<OwnedVector<Timed>> holder;
    auto file = json::parse (R"({"Steps": [{"start": 1}, {"start": "no number"}, {"start": 3}]})");

    EXPECT_THROW (Json::fromJson (file, holder, {}), std::invalid_argument);
    ASSERT_EQ (holder.steps.size(), 3u);

    for (const auto& step : holder.steps)
        EXPECT_NE (step, nullptr);
}
