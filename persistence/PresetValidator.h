#pragma once

#include <juce_core/juce_core.h>

#include <map>
#include <utility>

namespace Orv::Presets
{
class Base;
}

namespace Orv::Presets::Validation
{
/** What is known of one file for one kind of preset. */
struct Verdict
{
    bool valid = false;
    bool checked = false;
};

/** The process-wide memory of which files are presets of which kind. A file
    is read and checked the first time it is asked about and never again:
    listing a library reads every file, and this keeps it to once per process.
    The verdict is kept per kind as well as per path, so that a file that
    passed as one kind is never taken for the other.

    Message thread only; nothing here is locked. */
class Validator
{
public:
    /** The one instance, made on first use. */
    static Validator& get();

    /** Whether the file is a valid preset of the preset's kind: the verdict
        remembered, or, for a file not seen before, the file's extension and
        then the preset's validate() on its content. A file that cannot be
        read as a plain file is refused without being remembered, so that it
        is checked again once it exists. */
    bool isValid (const Base& preset, const juce::File& file);

    /** The verdict so far; unchecked for a file never asked about. */
    Verdict find (const Base& preset, const juce::File& file) const;

    /** Records the file as valid without reading it: for what this program
        has just written itself. */
    void markValid (const Base& preset, const juce::File& file);

private:
    using Key = std::pair<juce::String, juce::String>;
    static Key keyOf (const Base& preset, const juce::File& file);

    std::map<Key, Verdict> verdicts;
};
} // namespace Orv::Presets::Validation
