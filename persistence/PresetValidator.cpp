#include "persistence/PresetValidator.h"

#include "core/Singleton.h"
#include "persistence/PresetBase.h"

namespace Orv::Presets::Validation
{
Validator& Validator::get() { return *Singleton<Validator>::get(); }

Validator::Key Validator::keyOf (const Base& preset, const juce::File& file)
{
    return { preset.getProduct(), file.getFullPathName() };
}

bool Validator::isValid (const Base& preset, const juce::File& file)
{
    const auto key = keyOf (preset, file);
    if (const auto found = verdicts.find (key); found != verdicts.end() && found->second.checked)
        return found->second.valid;

    Verdict verdict;
    if (preset.hasExtension (file))
    {
        if (! Base::isReadableFile (file))
            return false;

        verdict.valid = preset.validate (Base::readJsonFile (file));
    }

    verdict.checked = true;
    verdicts[key] = verdict;
    return verdict.valid;
}

Verdict Validator::find (const Base& preset, const juce::File& file) const
{
    const auto found = verdicts.find (keyOf (preset, file));
    return found != verdicts.end() ? found->second : Verdict {};
}

void Validator::markValid (const Base& preset, const juce::File& file) { verdicts[keyOf (preset, file)] = { true, true }; }
} // namespace Orv::Presets::Validation
