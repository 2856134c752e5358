// libFuzzer target: arbitrary bytes read as a pattern file and reflected into
// a clip, whose "Mod" key may make any kind of modifier (step sequence, loop
// fitter, tracks, pattern of clips, note list), then evaluated, cloned and
// saved.
//
// What counts as a failure: any crash, sanitizer report, hang or runaway
// memory; any exception other than the documented text-to-number failures
// of a load.

#include "FuzzLoad.h"
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    const auto context = size % 2 == 0 ? ReflectContext::forPreset() : ReflectContext::forHostState();
    auto input = Json::fromText (reinterpret_cast<const char*> (data), size);

    Clip clip;
    Fuzzing::loadTolerantly (input, clip, context);

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
    Fuzzing::loadTolerantly (saved, reloaded, context);
    return 0;
}
