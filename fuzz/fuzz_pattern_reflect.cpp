// libFuzzer target: arbitrary bytes read as a pattern file and reflected into
// a clip, whose "Mod" key may make any kind of modifier (step sequence, loop
// fitter, tracks, pattern of clips, note list), then evaluated, cloned and
// saved.
//
// What counts as a failure: any crash, sanitizer report, hang or runaway
// memory; any exception other than the documented text-to-number failures
// of a load.

#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "persistence/JsonText.h"
#include "persistence/ReflectMembers.h"
#include "sequencer/PatternData.h"
#include "sequencer/modifiers/Clip.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace
{
using namespace Orv;
using Sequencer::PatternData;
using Sequencer::Modifiers::Clip;

/** The text-to-number failures that a load may let out: a real read from
    text, and a sequence's "mode" read from text. */
bool isDocumentedLoadFailure (const std::exception& e)
{
    for (const auto* message : { invalidRealTextMessage, realTextOutOfRangeMessage,
                                 "invalid stol argument", "stol argument out of range" })
        if (std::strcmp (e.what(), message) == 0)
            return true;
    return false;
}

bool load (nlohmann::json& value, Clip& clip, ReflectContext context)
{
    try
    {
        Json::fromJson (value, clip, context);
        return true;
    }
    catch (const std::invalid_argument& e)
    {
        if (! isDocumentedLoadFailure (e))
            throw;
    }
    catch (const std::out_of_range& e)
    {
        if (! isDocumentedLoadFailure (e))
            throw;
    }
    return false;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    const auto context = size % 2 == 0 ? ReflectContext::forPreset() : ReflectContext::forHostState();
    auto input = Json::fromText (reinterpret_cast<const char*> (data), size);

    Clip clip;
    load (input, clip, context);

    // A half-loaded pattern must still evaluate and copy: that is what the
    // live state does with whatever a file left behind.
    PatternData result;
    clip.evaluate (result);
    result.sort();

    auto copy = clip.clone();
    PatternData again;
    copy->evaluate (again);

    auto saved = Json::toJson (clip, context);
    Clip reloaded;
    load (saved, reloaded, context);
    return 0;
}
