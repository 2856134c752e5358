#pragma once

#include <nlohmann/json.hpp>

#include <map>
#include <typeindex>
#include <typeinfo>

namespace Orv::Presets
{
/** The JSON of one kind of preset as it stands when newly made, which
    "Load Init" applies. */
struct SingleInitializer
{
    nlohmann::json json;
};

/** The process-wide record of each preset class's initial JSON, by the
    class's run-time type. The first object of a class that is initialised
    records it; its presence also tells later objects of the class that the
    factory library has been unpacked in this process.

    Message thread only; nothing here is locked. */
class Initializer
{
public:
    /** The one instance, made on first use. */
    static Initializer& get();

    /** The class's initial JSON, or null when none has been recorded. */
    const nlohmann::json* find (const std::type_info& type) const;

    /** Records the JSON unless the class has one already; true when it was
        recorded now. */
    bool add (const std::type_info& type, nlohmann::json json);

private:
    std::map<std::type_index, SingleInitializer> entries;
};
} // namespace Orv::Presets
