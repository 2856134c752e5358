#include "persistence/FileTree.h"

#include <gtest/gtest.h>
#include <juce_core/juce_core.h>

#include <unistd.h>

namespace
{
TEST (FileTree, ListsChildrenFirstInNaturalOrderFiltersAndSurvivesALinkBackUp)
{
    const auto root = juce::File::createTempFile ("tree");
    for (const auto* path : { "b 10.json", "B 9.json", "skip.json", "note.txt", "z/inner.json", "a/deep/x.json" })
        root.getChildFile (path).create();
    ASSERT_EQ (symlink (root.getFullPathName().toRawUTF8(), root.getChildFile ("a/loop").getFullPathName().toRawUTF8()), 0);

    const auto tree = Orv::Files::Tree::build (root, "*.json", [] (const juce::File& f) { return f.getFileName() != "skip.json"; });
    juce::StringArray names;
    for (const auto& file : tree.flatten())
        names.add (file.getRelativePathFrom (root));

    EXPECT_EQ (names, juce::StringArray ({ "a/deep/x.json", "z/inner.json", "B 9.json", "b 10.json" }));
    EXPECT_TRUE (Orv::Files::Tree::build (root.getChildFile ("missing"), "*.json", {}).isEmpty());
    root.deleteRecursively();
}
} // namespace
