#pragma once

#include <juce_core/juce_core.h>

#include <functional>
#include <vector>

namespace Orv::Files
{
/** One folder of a library as the menus show it: the files of the folder
    that pass a filter, and a node for each subfolder. Built once and then
    read; a plain value. Message thread. */
struct Tree
{
    /** Whether a file belongs in the tree. An empty filter takes every file. */
    using Filter = std::function<bool (const juce::File&)>;

    juce::File directory;
    juce::String wildcard;
    Filter filter;
    std::vector<juce::File> files;
    std::vector<Tree> children;

    /** Walks the directory and its subfolders for regular files that match
        the wildcard and pass the filter, then sorts the result. A folder that
        is reached a second time (through a link back up the tree) is skipped,
        so that no user's folder can make the walk endless. A directory that
        does not exist gives an empty tree. */
    static Tree build (const juce::File& directory, const juce::String& wildcard, Filter filter);

    /** Files and children by name, in natural order and ignoring case, as a
        file browser lists them; recursively. */
    void sort();

    /** Every file, depth first: each child's files before this folder's
        own, the order in which the menus list them. */
    std::vector<juce::File> flatten() const;

    /** True when neither this folder nor any child holds a file. */
    bool isEmpty() const;
};
} // namespace Orv::Files
