#include "synth/RuxaFormat.h"

#include "synth/RuxaCoding.h"
#include "synth/RuxaReader.h"
#include "synth/RuxaWriter.h"

#include <cstring>
#include <iterator>
#include <memory>
#include <string>

namespace Orv::Audio::Formats::Ruxa
{
namespace
{
// 88000 is what the format has always offered; it is not a misprint of 88200.
constexpr int possibleSampleRates[] = { 44100, 48000, 88000, 96000 };
constexpr int possibleBitDepths[] = { Coding16::bits };
} // namespace

Format::Format() : juce::AudioFormat (formatName, fileExtension) {}

Format::~Format() = default;

juce::Array<int> Format::getPossibleSampleRates()
{
    return juce::Array<int> (possibleSampleRates, static_cast<int> (std::size (possibleSampleRates)));
}

juce::Array<int> Format::getPossibleBitDepths()
{
    return juce::Array<int> (possibleBitDepths, static_cast<int> (std::size (possibleBitDepths)));
}

bool Format::canDoStereo() { return true; }

bool Format::canDoMono() { return true; }

bool Format::isCompressed() { return false; }

juce::AudioFormatReader* Format::createReaderFor (juce::InputStream* sourceStream, bool deleteStreamIfOpeningFails)
{
    if (sourceStream == nullptr)
        return nullptr;

    const auto start = sourceStream->getPosition();
    const auto matches = readMagic (*sourceStream);
    sourceStream->setPosition (start);

    if (! matches)
    {
        if (deleteStreamIfOpeningFails)
            delete sourceStream;

        return nullptr;
    }

    auto reader = std::make_unique<Reader> (sourceStream);

    if (reader->isValid())
        return reader.release();

    if (! deleteStreamIfOpeningFails)
    {
        // The caller keeps the stream and may try another format on it.
        sourceStream->setPosition (start);
        reader->input = nullptr;
    }

    return nullptr;
}

juce::AudioFormatWriter* Format::createWriterFor (juce::OutputStream* streamToWriteTo,
                                                  double sampleRateToUse,
                                                  unsigned int numberOfChannels,
                                                  int bitsPerSample,
                                                  const juce::StringPairArray&,
                                                  int)
{
    if (streamToWriteTo == nullptr || numberOfChannels == 0 || bytesPerSample (bitsPerSample) == 0)
        return nullptr;

    return new Writer (streamToWriteTo, sampleRateToUse, numberOfChannels, static_cast<unsigned int> (bitsPerSample));
}

bool Format::readMagic (juce::InputStream& stream)
{
    constexpr auto size = std::char_traits<char>::length (magic) + 1;
    char bytes[size] = {};

    return stream.read (bytes, static_cast<int> (size)) == static_cast<int> (size)
        && std::memcmp (bytes, magic, size) == 0;
}
} // namespace Orv::Audio::Formats::Ruxa
