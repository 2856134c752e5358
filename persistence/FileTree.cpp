#include "persistence/FileTree.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <system_error>

namespace Orv::Files
{
namespace
{
    namespace fs = std::filesystem;

    fs::path pathOf (const juce::File& file) { return fs::u8path (file.getFullPathName().toStdString()); }

    /** Only plain files are read: a pipe or a device under a preset's name
        would block the reader. */
    bool isRegularFile (const juce::File& file)
    {
        std::error_code error;
        return fs::is_regular_file (pathOf (file), error);
    }

    /** The folder's one true path, links resolved; empty when it cannot be
        known, which then counts as a folder of its own. */
    std::string canonicalOf (const juce::File& directory)
    {
        std::error_code error;
        auto canonical = fs::canonical (pathOf (directory), error);
        return error ? std::string() : canonical.u8string();
    }

    bool byName (const juce::File& a, const juce::File& b)
    {
        const auto order = a.getFileName().compareNatural (b.getFileName(), false);
        return order != 0 ? order < 0 : a.getFullPathName() < b.getFullPathName();
    }

    /** False for a folder already walked, which then is no node at all. */
    bool walk (Tree& node, std::set<std::string>& visited)
    {
        const auto canonical = canonicalOf (node.directory);
        if (! canonical.empty() && ! visited.insert (canonical).second)
            return false;

        for (const auto& file : node.directory.findChildFiles (juce::File::findFiles, false, node.wildcard))
            if (isRegularFile (file) && (node.filter == nullptr || node.filter (file)))
                node.files.push_back (file);

        for (const auto& folder : node.directory.findChildFiles (juce::File::findDirectories, false))
        {
            Tree child { folder, node.wildcard, node.filter, {}, {} };
            if (walk (child, visited))
                node.children.push_back (std::move (child));
        }
        return true;
    }

    void flattenInto (const Tree& node, std::vector<juce::File>& out)
    {
        for (const auto& child : node.children)
            flattenInto (child, out);
        out.insert (out.end(), node.files.begin(), node.files.end());
    }
} // namespace

Tree Tree::build (const juce::File& directory, const juce::String& wildcard, Filter filter)
{
    Tree root { directory, wildcard, std::move (filter), {}, {} };
    if (directory.isDirectory())
    {
        std::set<std::string> visited;
        walk (root, visited);
    }
    root.sort();
    return root;
}

void Tree::sort()
{
    std::sort (files.begin(), files.end(), byName);
    std::sort (children.begin(), children.end(), [] (const Tree& a, const Tree& b) { return byName (a.directory, b.directory); });
    for (auto& child : children)
        child.sort();
}

std::vector<juce::File> Tree::flatten() const
{
    std::vector<juce::File> out;
    flattenInto (*this, out);
    return out;
}

bool Tree::isEmpty() const
{
    return files.empty() && std::all_of (children.begin(), children.end(), [] (const Tree& child) { return child.isEmpty(); });
}
} // namespace Orv::Files
