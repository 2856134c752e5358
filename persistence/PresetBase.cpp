#include "persistence/PresetBase.h"

#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "persistence/JsonText.h"
#include "persistence/PresetInitializer.h"
#include "persistence/PresetValidator.h"
#include "persistence/ReflectMembers.h"

#include <filesystem>
#include <system_error>
#include <typeinfo>

namespace Orv::Presets
{
namespace
{
    constexpr const char* company = "Trevalis";
    constexpr const char* productFolder = "Halvane";
    constexpr const char* initName = "Init";
    /** Archives made on a Mac carry their resource forks in "__MACOSX". */
    constexpr const char* macResourceFolderMark = "MACOS";
    constexpr int saveBufferBytes = 16384;

    /** The "id" of a preset file, read as the preset's own reflect reads it. */
    juce::String idOf (nlohmann::json json)
    {
        juce::String id;
        try
        {
            Json::Loader loader (json, ReflectContext::forPreset());
            addMember (loader, "id", id);
        }
        catch (...)
        {
        }
        return id;
    }
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

bool Base::loadJsonOrRestore (const nlohmann::json& json, ReflectContext context) noexcept
{
    nlohmann::json before;
    try
    {
        // What this object says of itself in the same context is everything
        // that a load in that context can touch.
        before = toJson (context);
        return loadJson (json, context);
    }
    catch (...)
    {
    }

    try
    {
        if (! before.is_null())
            loadJson (before, context);
    }
    catch (...)
    {
        // What this object saved a moment ago always loads; nothing more can
        // be done if even that fails.
    }
    return false;
}

//==============================================================================
bool Base::hasExtension (const juce::File& file) const
{
    return file.getFileExtension().fromFirstOccurrenceOf (".", false, false) == getExtension();
}

bool Base::isReadableFile (const juce::File& file)
{
    std::error_code error;
    const auto path = std::filesystem::u8path (file.getFullPathName().toStdString());
    return std::filesystem::is_regular_file (path, error) && file.getSize() <= maxFileBytes;
}

nlohmann::json Base::readJsonFile (const juce::File& file) noexcept
{
    try
    {
        juce::MemoryBlock data;
        if (! isReadableFile (file) || ! file.loadFileAsData (data))
            return nullptr;

        return Json::fromText (static_cast<const char*> (data.getData()), data.getSize());
    }
    catch (...)
    {
        return nullptr;
    }
}

nlohmann::json Base::load (const juce::File& file) noexcept
{
    try
    {
        if (file.getFullPathName().isEmpty() || file.isDirectory() || ! hasExtension (file))
            return nullptr;

        if (! Validation::Validator::get().isValid (*this, file))
            return nullptr;

        // The verdict is remembered, but the file may have changed since:
        // what is loaded must pass on its own.
        auto json = readJsonFile (file);
        if (! validate (json) || ! loadJsonOrRestore (json, ReflectContext::forPreset()))
            return nullptr;

        name = file.getFileNameWithoutExtension();
        return json;
    }
    catch (...)
    {
        return nullptr;
    }
}

bool Base::loadInit() noexcept
{
    try
    {
        const auto* init = Initializer::get().find (typeid (*this));
        if (init == nullptr || ! validate (*init) || ! loadJsonOrRestore (*init, ReflectContext::forPreset()))
            return false;

        name = initName;
        return true;
    }
    catch (...)
    {
        return false;
    }
}

bool Base::save (const juce::File& file) noexcept
{
    const auto previousId = id;
    try
    {
        if (file.getFullPathName().isEmpty() || file.isDirectory())
            return false;

        id = juce::Time::getCurrentTime().toString (true, true, true, true);
        const auto text = Json::toText (toJson (ReflectContext::forPreset()));

        file.getParentDirectory().createDirectory();
        juce::TemporaryFile temporary (file);
        {
            juce::FileOutputStream out (temporary.getFile(), saveBufferBytes);
            if (! out.openedOk() || ! out.writeString (juce::String::fromUTF8 (text.data(), (int) text.size())))
                throw std::runtime_error ("write failed");
            out.flush();
            if (out.getStatus().failed())
                throw std::runtime_error ("write failed");
        }

        if (! temporary.overwriteTargetFileWithTemporary())
            throw std::runtime_error ("write failed");

        name = file.getFileName().upToFirstOccurrenceOf (".", false, false);
        Validation::Validator::get().markValid (*this, file);
        refreshFlatList();
        return true;
    }
    catch (...)
    {
        id = previousId;
        return false;
    }
}

//==============================================================================
const Binaries::BinaryInfo* Base::findFactoryArchive() const
{
    return Binaries::find ({ factoryArchiveGroup, getFactoryResource() });
}

juce::File Base::getFactoryDirectoryResolved() const
{
    const auto dev = getDevDirectory();
    return dev.isDirectory() ? dev.getChildFile (getProduct()) : getFactoryDirectory();
}

void Base::initialise()
{
    try
    {
        if (Initializer::get().add (typeid (*this), toJson (ReflectContext::forPreset())))
            unpackFactoryLibrary();

        load (getDefaultFile());
    }
    catch (...)
    {
        // A library that cannot be set up leaves the preset at "Init".
    }
}

bool Base::unpackFactoryLibrary()
{
    const auto factory = getFactoryDirectoryResolved();
    factory.createDirectory();
    getUserDirectory().createDirectory();

    if (getDevDirectory().isDirectory())
        return false;

    const auto* archive = findFactoryArchive();
    if (archive == nullptr || archive->data == nullptr)
        return false;

    return unpackArchive (archive->data, archive->size, factory);
}

bool Base::unpackArchive (const void* data, size_t size, const juce::File& folder)
{
    juce::MemoryInputStream stream (data, size, false);
    juce::ZipFile zip (stream);
    if (zip.getNumEntries() == 0)
        return false;

    folder.deleteRecursively();
    folder.createDirectory();
    zip.uncompressTo (folder, true);

    for (const auto& child : folder.findChildFiles (juce::File::findFilesAndDirectories, false))
        if (child.getFileName().contains (macResourceFolderMark))
            child.deleteRecursively();

    return true;
}

//==============================================================================
Files::Tree getListTree (Base& preset, const juce::File& directory)
{
    return Files::Tree::build (directory, "*." + preset.getExtension(), [&preset] (const juce::File& file) {
        return Validation::Validator::get().isValid (preset, file);
    });
}

Files::Tree Base::getFactoryTree() { return getListTree (*this, getFactoryDirectoryResolved()); }

Files::Tree Base::getUserTree() { return getListTree (*this, getUserDirectory()); }

const Base::FileList& Base::getFlatList()
{
    if (fileList == nullptr)
    {
        auto list = std::make_unique<FileList>();
        for (const auto& tree : { getFactoryTree(), getUserTree() })
            for (const auto& file : tree.flatten())
                list->push_back ({ file, idOf (readJsonFile (file)) });

        fileList = std::move (list);
    }
    return *fileList;
}
} // namespace Orv::Presets
