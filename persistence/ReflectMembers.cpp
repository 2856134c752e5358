#include "persistence/ReflectMembers.h"

namespace Orv
{
bool addMember (Reflector& reflector, const std::string& key, juce::String& member)
{
    if (! reflector.isLoading())
    {
        reflector.setValue (key, ReflectedValue (member.toStdString()));
        return true;
    }

    const auto value = reflector.getValue (key);

    if (value.isEmpty())
        return false;

    const auto text = value.toText();
    member = juce::String::fromUTF8 (text.data(), static_cast<int> (text.size()));
    return true;
}
} // namespace Orv
