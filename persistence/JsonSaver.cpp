#include "persistence/JsonSaver.h"

namespace Orv::Json
{
nlohmann::json toJsonValue (const ReflectedValue& value)
{
    switch (value.getTag())
    {
        case ReflectedValue::Tag::boolean: return value.getBool();
        case ReflectedValue::Tag::integer: return value.getInteger();
        case ReflectedValue::Tag::real:    return value.getReal();
        case ReflectedValue::Tag::text:    return value.getText();
        case ReflectedValue::Tag::empty:   break;
    }

    return nullptr;
}

//==============================================================================
Saver::Saver (ReflectContext contextToUse, std::string keyToUse)
    : Reflector (contextToUse), key (std::move (keyToUse))
{
}

Reflector* Saver::child (const std::string& name)
{
    children.push_back (std::make_unique<Saver> (context, name));
    return children.back().get();
}

Reflector* Saver::appendChild (const std::string&)
{
    json = nlohmann::json::array();
    children.push_back (std::make_unique<Saver> (context));
    return children.back().get();
}

void Saver::setValue (const std::string& name, const ReflectedValue& value)
{
    json[name] = toJsonValue (value);
}

void Saver::foldInto (nlohmann::json& out)
{
    out = std::move (json);

    for (auto& c : children)
    {
        nlohmann::json folded;
        c->foldInto (folded);

        if (out.is_array())
            out.push_back (std::move (folded));
        else
            out[c->key] = std::move (folded);
    }
}
} // namespace Orv::Json
