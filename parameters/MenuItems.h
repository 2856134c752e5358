#pragma once

#include "core/CallbackFunc.h"

#include <juce_core/juce_core.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace Orv::MenuItems
{
/** How a parameter tells a menu what it can be set to: a tree of entries,
    each with its text, its tick and its action. Built and used on the
    message thread only. */
struct Item
{
    static constexpr std::int32_t plainEntry = 0;
    static constexpr std::int32_t subMenuRoot = 1;

    std::int32_t type = plainEntry;
    juce::String name;
    std::vector<Item> subItems;
    std::function<bool()> isSelected = [] { return false; };
    std::function<bool()> isEnabled = [] { return true; };
    CallbackFunc func;
    bool flag = false;
};
} // namespace Orv::MenuItems

namespace Orv::Parameters
{
/** Message thread only: makes every entry of the tree, the root included,
    run its old action and then extraFunc. Depth first: an item's own action
    is wrapped before its children's. */
void setRecursiveFunc (MenuItems::Item& item, const CallbackFunc& extraFunc);
} // namespace Orv::Parameters
