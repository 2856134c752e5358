#pragma once

#include "core/Binaries.h"
#include "core/Broadcaster.h"
#include "persistence/FileTree.h"
#include "persistence/ReflectContext.h"
#include "persistence/Reflector.h"
#include "persistence/Version.h"

#include <juce_core/juce_core.h>
#include <nlohmann/json.hpp>

#include <cstddef>
#include <memory>
#include <vector>

namespace Orv::Presets
{
/** The root of everything stored as a preset file: its version, name, id
    and dirty flag, how a file of its kind is checked, and where its files
    live. Derived classes add what the file holds through the two reflect
    hooks.

    Message thread, or a host's state call under the rules of the instance's
    state blob; never the audio thread. */
class Base
{
public:
    /** The version this program writes into every file. */
    static Version programVersion();

    Base();
    virtual ~Base();

    /** One file of the flat list: the file and the "id" it holds. */
    struct FileEntry
    {
        juce::File file;
        juce::String id;
    };
    using FileList = std::vector<FileEntry>;

    /** The group of the embedded resources that holds the factory archives. */
    static constexpr const char* factoryArchiveGroup = "Presets";
    /** Preset files are small; anything larger is no preset and is not read,
        so that a stray file cannot take the host's memory. */
    static constexpr juce::int64 maxFileBytes = 16 * 1024 * 1024;

    Base (const Base&) = delete;
    Base& operator= (const Base&) = delete;

    //==============================================================================
    /** The oldest file version this kind accepts. */
    virtual Version getMinVersion() const { return {}; }

    /** Where the user's own files of this kind live. */
    virtual juce::File getUserDirectory() const;

    /** The file extension, without its dot. */
    virtual juce::String getExtension() const { return "json"; }

    /** The word a file must carry under "product". */
    virtual juce::String getProduct() const { return "Halvane"; }

    /** The file loaded at start; none by default. */
    virtual juce::File getDefaultFile() const { return {}; }

    /** The embedded archive that holds the factory files of this kind. */
    virtual juce::String getFactoryResource() const { return "FactoryPresets.zip"; }

    /** Whether a file's JSON is of this kind and recent enough: "version" at
        least getMinVersion(), "product" equal to getProduct(). Never throws;
        anything wrong gives false. */
    virtual bool validate (const nlohmann::json& json) const;

    /** First use of the object, on the message thread: records the class's
        initial JSON and unpacks the factory library the first time the class
        is initialised in this process, then loads the default file. Never
        throws. */
    virtual void initialise();

    /** The developer's factory folder on the desktop, which replaces the
        unpacked factory files while it exists. */
    virtual juce::File getDevDirectory() const;

    /** Where the factory files of this kind are unpacked. */
    virtual juce::File getFactoryDirectory() const;

    /** Instance-wide members (the window's size, the parameter list). */
    virtual void reflectInstance (Reflector&) {}

    /** The file's content proper. */
    virtual void reflectContent (Reflector&) {}

    /** The zip archive of the factory library; null when the program holds
        none. By default the resource getFactoryResource() of the group
        factoryArchiveGroup. */
    virtual const Binaries::BinaryInfo* findFactoryArchive() const;

    //==============================================================================
    /** Visits the header keys, then the two hooks. A load whose "version" is
        older than getMinVersion() changes nothing. Lets through what member
        reflects throw. */
    void reflect (Reflector& reflector);

    /** Loads JSON through reflect in the given context; null, an empty array
        and an empty object are refused without a visit, and give false.
        Lets through what reflect throws. */
    bool loadJson (nlohmann::json json, ReflectContext context);

    /** The JSON of this object in the given context. */
    nlohmann::json toJson (ReflectContext context);

    /** loadJson, but a load that throws part way puts the object back as it
        was before, so no JSON can leave it half loaded. False when the JSON
        was refused or the load failed; never throws. */
    bool loadJsonOrRestore (const nlohmann::json& json, ReflectContext context) noexcept;

    //==============================================================================
    /** Loads a preset file: a plain file of this kind's extension that the
        validator takes and whose content passes validate() still. The name
        becomes the file's name up to its last dot. Answers the JSON that was
        loaded, or null when the file was refused or failed to load; then the
        object is as it was. Never throws. */
    nlohmann::json load (const juce::File& file) noexcept;

    /** Applies the JSON this class had when new, and names the preset "Init".
        False, and nothing changes, before the class was initialised. */
    bool loadInit() noexcept;

    /** Writes this preset to a file: a new "id" from the local time, the JSON
        of a preset file (which still holds the old name), then the name from
        the file's name up to its first dot. The file replaces an old one only
        once it is written whole; on failure the file and the object are as
        they were, and false comes back. Never throws. */
    bool save (const juce::File& file) noexcept;

    //==============================================================================
    /** The developer's factory folder, when it exists, with this kind's
        product name; otherwise getFactoryDirectory(). */
    juce::File getFactoryDirectoryResolved() const;

    /** The valid files of the resolved factory folder and of the user's. */
    Files::Tree getFactoryTree();
    Files::Tree getUserTree();

    /** Factory files first, then the user's, each depth first in the order
        of the trees. Made at first use and kept until refreshFlatList(). */
    const FileList& getFlatList();

    /** Forgets the flat list; the next use reads the folders again. */
    void refreshFlatList() { fileList.reset(); }

    /** Replaces the factory folder by the contents of the factory archive
        and makes the user's folder, unless the developer's folder stands in
        for the factory one. Nothing is deleted when there is no archive or
        it holds nothing. True when an archive was unpacked. */
    bool unpackFactoryLibrary();

    /** Unpacks the zip archive in memory into the folder, which is emptied
        first, and removes the "__MACOSX" folder that archives made on a Mac
        carry. False, with the folder untouched, when the bytes hold no
        archive with entries. */
    static bool unpackArchive (const void* data, size_t size, const juce::File& folder);

    //==============================================================================
    /** Whether the file's extension, without its dot, is this kind's. */
    bool hasExtension (const juce::File& file) const;

    /** A plain file within maxFileBytes: the only kind that is read. */
    static bool isReadableFile (const juce::File& file);

    /** The JSON of a preset file, read up to its NUL; null when the file is
        not readable or holds no JSON. Never throws. */
    static nlohmann::json readJsonFile (const juce::File& file) noexcept;

    //==============================================================================
    bool dirty = false;
    juce::String name { "Init" };
    juce::String id;
    Version version;

    /** Told on the loading thread before and after every load that goes on. */
    Events::Broadcaster aboutToLoadBroadcaster;
    Events::Broadcaster loadedBroadcaster;

    /** The folder in the user's documents under which both kinds keep
        their files. */
    static juce::File getDocumentsRoot();
    /** The folder of this product's application data: the common one where
        it exists, else the user's. */
    static juce::File getApplicationDataRoot();

private:
    std::unique_ptr<FileList> fileList;
};

/** The valid files of a folder of the preset's kind, as a sorted tree. */
Files::Tree getListTree (Base& preset, const juce::File& directory);
} // namespace Orv::Presets
