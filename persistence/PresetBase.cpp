#include "persistence/PresetBase.h"

#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "persistence/ReflectMembers.h"

namespace Orv::Presets
{
namespace
{
    constexpr const char* company = "Trevalis";
    constexpr const char* productFolder = "Halvane";
} // namespace

Version Base::programVersion() { return Version::fromString (HALVANE_VERSION_STRING); }

Base::Base() : version (programVersion()) {}

Base::~Base() = default;

//==============================================================================
juce::File Base::getDocumentsRoot()
{
    return juce::File::getSpecialLocation (juce::File::userDocumentsDirectory).getChildFile (company).getChildFile (productFolder);
}

juce::File Base::getApplicationDataRoot()
{
    const auto common = juce::File::getSpecialLocation (juce::File::commonApplicationDataDirectory)
                            .getChildFile (company)
                            .getChildFile (productFolder);
    if (common.isDirectory())
        return common;

    return juce::File::getSpecialLocation (juce::File::userApplicationDataDirectory)
        .getChildFile (company)
        .getChildFile (productFolder);
}

juce::File Base::getUserDirectory() const { return getDocumentsRoot().getChildFile ("Presets"); }

juce::File Base::getDevDirectory() const
{
    return juce::File::getSpecialLocation (juce::File::userDesktopDirectory).getChildFile ("TrevalisDev").getChildFile ("Presets");
}

juce::File Base::getFactoryDirectory() const { return getApplicationDataRoot().getChildFile ("Presets"); }

bool Base::validate (const nlohmann::json& json) const
{
    try
    {
        const auto fileVersion = Version::fromString (json.at ("version").get<std::string>());
        if (fileVersion < getMinVersion())
            throw std::runtime_error ("Invalid Version");

        if (json.at ("product").get<std::string>() != getProduct().toStdString())
            throw std::runtime_error ("Invalid Product");

        return true;
    }
    catch (...)
    {
        // Whatever is wrong with the file, it is simply not one of ours.
        return false;
    }
}

//==============================================================================
void Base::reflect (Reflector& reflector)
{
    const auto loading = reflector.isLoading();
    if (loading)
        aboutToLoadBroadcaster.call();

    // A file older than this kind accepts is left unread, whole.
    auto stored = version;
    addMember (reflector, "version", stored);
    if (loading && stored < getMinVersion())
        return;

    addMember (reflector, "dirty", dirty);

    if (! loading)
    {
        auto product = getProduct();
        addMember (reflector, "product", product);
    }

    addMember (reflector, "name", name);
    addMember (reflector, "version", version);
    addMember (reflector, "id", id);

    reflectInstance (reflector);
    reflectContent (reflector);

    if (loading)
        loadedBroadcaster.call();
}

bool Base::loadJson (nlohmann::json json, ReflectContext context)
{
    if (json.is_null() || ((json.is_array() || json.is_object()) && json.empty()))
        return false;

    Json::fromJson (json, *this, context);
    return true;
}

nlohmann::json Base::toJson (ReflectContext context) { return Json::toJson (*this, context); }
} // namespace Orv::Presets
