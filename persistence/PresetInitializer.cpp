#include "persistence/PresetInitializer.h"

#include "core/Singleton.h"

#include <utility>

namespace Orv::Presets
{
Initializer& Initializer::get() { return *Singleton<Initializer>::get(); }

const nlohmann::json* Initializer::find (const std::type_info& type) const
{
    const auto found = entries.find (std::type_index (type));
    return found != entries.end() ? &found->second.json : nullptr;
}

bool Initializer::add (const std::type_info& type, nlohmann::json json)
{
    return entries.try_emplace (std::type_index (type), SingleInitializer { std::move (json) }).second;
}
} // namespace Orv::Presets
