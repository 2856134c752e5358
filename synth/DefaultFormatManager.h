#pragma once

#include "synth/FileReaderStream.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <memory>
#include <vector>

namespace Orv::Audio
{
/** Opens audio from a file or a stream with the formats this program reads.
    The format named by the extension (ignoring case) is tried first, then
    every format in its fixed order, so that a file with a wrong or missing
    extension still opens. One per process, through Orv::Singleton. */
class DefaultFormatManager
{
public:
    DefaultFormatManager();

    /** Any thread: the process's instance; made on first use, which must not be
        on the audio thread. */
    static DefaultFormatManager& getInstance();

    /** Any thread but the audio thread: the file opened by the first format
        that reads it, or null. */
    std::unique_ptr<Files::FileReaderStream> open (const juce::File& file) const;

    /** Any thread but the audio thread: the stream opened by the first format
        that reads it, or null. On success the result owns the stream; on
        failure the stream is deleted. extension is without the dot. */
    std::unique_ptr<Files::FileReaderStream> open (std::unique_ptr<juce::InputStream> stream,
                                                   const juce::String& extension) const;

    /** The extensions known, without dots, in the order their formats are
        tried. */
    juce::StringArray getExtensions() const;

private:
    struct Entry
    {
        juce::String extension;
        std::unique_ptr<juce::AudioFormat> format;
    };

    void addFormat (const juce::String& extension, std::unique_ptr<juce::AudioFormat> format);
    std::unique_ptr<Files::FileReaderStream> tryFormat (const Entry& entry, juce::InputStream& stream) const;

    std::vector<Entry> formats;
};
} // namespace Orv::Audio
