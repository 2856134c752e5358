#pragma once

#include "core/Broadcaster.h"
#include "persistence/ReflectContext.h"
#include "persistence/Reflector.h"
#include "persistence/Version.h"

#include <juce_core/juce_core.h>
#include <nlohmann/json.hpp>

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

    /** The developer's factory folder on the desktop, which replaces the
        unpacked factory files while it exists. */
    virtual juce::File getDevDirectory() const;

    /** Where the factory files of this kind are unpacked. */
    virtual juce::File getFactoryDirectory() const;

    /** Instance-wide members (the window's size, the parameter list). */
    virtual void reflectInstance (Reflector&) {}

    /** The file's content proper. */
    virtual void reflectContent (Reflector&) {}

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
};
} // namespace Orv::Presets
