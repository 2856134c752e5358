#include "parameters/MenuItems.h"

namespace Orv::Parameters
{
void setRecursiveFunc (MenuItems::Item& item, const CallbackFunc& extraFunc)
{
    item.func = chainFunctions (item.func, extraFunc);

    for (auto& child : item.subItems)
        setRecursiveFunc (child, extraFunc);
}
} // namespace Orv::Parameters
