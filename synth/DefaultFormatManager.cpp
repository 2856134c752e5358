#include "synth/DefaultFormatManager.h"

#include "core/Singleton.h"
#include "synth/RuxaFormat.h"

namespace Orv::Audio
{
DefaultFormatManager::DefaultFormatManager()
{
    // The order in which formats are tried when the extension's own format
    // cannot read a stream.
    addFormat ("flac", std::make_unique<juce::FlacAudioFormat>());
    addFormat ("ruxa", std::make_unique<Formats::Ruxa::Format>());
    addFormat ("wav", std::make_unique<juce::WavAudioFormat>());
    addFormat ("aiff", std::make_unique<juce::AiffAudioFormat>());
    addFormat ("ogg", std::make_unique<juce::OggVorbisAudioFormat>());
}

DefaultFormatManager& DefaultFormatManager::getInstance()
{
    return *Singleton<DefaultFormatManager>::get();
}

void DefaultFormatManager::addFormat (const juce::String& extension, std::unique_ptr<juce::AudioFormat> format)
{
    formats.push_back ({ extension, std::move (format) });
}

juce::StringArray DefaultFormatManager::getExtensions() const
{
    juce::StringArray extensions;
    for (const auto& entry : formats)
        extensions.add (entry.extension);
    return extensions;
}

std::unique_ptr<Files::FileReaderStream> DefaultFormatManager::open (const juce::File& file) const
{
    auto stream = file.createInputStream();
    if (stream == nullptr)
        return nullptr;
    return open (std::move (stream), file.getFileExtension().fromFirstOccurrenceOf (".", false, false));
}

std::unique_ptr<Files::FileReaderStream> DefaultFormatManager::tryFormat (const Entry& entry, juce::InputStream& stream) const
{
    // Each attempt starts at the beginning, whatever the last one read.
    if (! stream.setPosition (0))
        return nullptr;

    constexpr bool deleteStreamIfOpeningFails = false;
    std::unique_ptr<juce::AudioFormatReader> reader (entry.format->createReaderFor (&stream, deleteStreamIfOpeningFails));
    return reader != nullptr ? std::make_unique<Files::FileReaderStream> (std::move (reader)) : nullptr;
}

std::unique_ptr<Files::FileReaderStream> DefaultFormatManager::open (std::unique_ptr<juce::InputStream> stream,
                                                                     const juce::String& extension) const
{
    if (stream == nullptr)
        return nullptr;

    const Entry* byExtension = nullptr;
    for (const auto& entry : formats)
        if (entry.extension.equalsIgnoreCase (extension))
            byExtension = &entry;

    std::vector<const Entry*> order;
    if (byExtension != nullptr)
        order.push_back (byExtension);
    for (const auto& entry : formats)
        if (&entry != byExtension)
            order.push_back (&entry);

    for (const auto* entry : order)
    {
        if (auto opened = tryFormat (*entry, *stream))
        {
            // The reader owns the stream from here on.
            stream.release();
            return opened;
        }
    }
    return nullptr;
}
} // namespace Orv::Audio
