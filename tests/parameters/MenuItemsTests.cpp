#include "parameters/MenuItems.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Orv::MenuItems::Item;

namespace
{
using Log = std::vector<std::string>;

Item makeEntry (const char* name, Log& log)
{
    Item item;
    item.name = name;
    item.func = [&log, name] { log.push_back (name); };
    return item;
}
} // namespace

TEST (MenuItemsSetRecursiveFunc, EveryLevelRunsItsOwnActionFirstThenTheAddedOne)
{
    Log log;
    auto root = makeEntry ("root", log);
    auto branch = makeEntry ("branch", log);
    branch.subItems.push_back (makeEntry ("leaf", log));
    root.subItems.push_back (branch);
    root.subItems.push_back (makeEntry ("sibling", log));

    Orv::Parameters::setRecursiveFunc (root, [&log] { log.push_back ("added"); });

    root.func();
    root.subItems[0].func();
    root.subItems[0].subItems[0].func();
    root.subItems[1].func();

    EXPECT_EQ (log, (Log { "root", "added", "branch", "added", "leaf", "added", "sibling", "added" }));
}

TEST (MenuItemsSetRecursiveFunc, EntryWithoutActionRunsOnlyTheAddedOne)
{
    Log log;
    Item root;
    root.subItems.emplace_back();

    Orv::Parameters::setRecursiveFunc (root, [&log] { log.push_back ("added"); });
    root.subItems[0].func();

    EXPECT_EQ (log, (Log { "added" }));
}

TEST (MenuItemsSetRecursiveFunc, WrappingTwiceChainsInOrder)
{
    Log log;
    auto root = makeEntry ("own", log);

    Orv::Parameters::setRecursiveFunc (root, [&log] { log.push_back ("first"); });
    Orv::Parameters::setRecursiveFunc (root, [&log] { log.push_back ("second"); });
    root.func();

    EXPECT_EQ (log, (Log { "own", "first", "second" }));
}
