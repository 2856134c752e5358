#pragma once

#include <juce_core/juce_core.h>

#include <cstdint>

namespace Orv
{
class Reflector;
}

namespace Orv::Resources
{
/** Where a resource's bytes come from. The values are what the GUI compares
    against (1 is a built-in file), so they never move. */
enum class Type : std::int32_t
{
    none = 0,
    /** A file of the program's embedded table, found by its name. */
    binary = 1,
    /** The same, from a table that several products share; read alike. */
    sharedBinary = 2,
    /** A file from outside: its bytes travel with the record. */
    externalFile = 3
};

/** A file that some part of the state plays or shows: a built-in one by name,
    or a file from outside with its whole content, so that a saved session
    still has it when the file is gone from the disk.

    A plain value; message thread (it is reflected and copied there). */
struct Resource
{
    /** Any thread: the text a file holds for a type. */
    static juce::String getTypeName (Type type);
    /** Any thread: the type of a text; an unknown text is none. */
    static Type getTypeFromName (const juce::String& text);

    /** True for the two kinds of built-in file. */
    bool isBuiltIn() const noexcept { return type == Type::binary || type == Type::sharedBinary; }

    /** "name", "type" as its text, and "data" as base-64 text, which JSON
        keeps byte for byte whatever the file holds. Data that is no base-64
        loads as nothing. Same thread as the pass. */
    void reflect (Reflector& reflector);

    juce::String name;
    Type type = Type::none;
    /** The file's content, for a file from outside only. */
    juce::MemoryBlock data;
};
} // namespace Orv::Resources
