#include "synth/source/Reader.h"

#include "synth/DefaultFormatManager.h"
#include "synth/source/FileSourceReader.h"

namespace Orv::Audio::Sampler::Source
{
namespace
{
    bool isUsable (const Files::FileReaderStream* stream)
    {
        return stream != nullptr && stream->getSampleRate() > 0.0 && stream->getNumChannels() > 0
               && stream->getLengthInSamples() >= 0 && stream->getLengthInSamples() <= Reader::maxLengthInSamples;
    }
} // namespace

Reader::Reader (const juce::File& file)
    : makeStream ([file] { return DefaultFormatManager::getInstance().open (file); })
{
}

Reader::Reader (const Binaries::BinaryInfo& resource)
    : makeStream ([resource] {
          constexpr bool keepInPlace = false;
          auto stream = std::make_unique<juce::MemoryInputStream> (resource.data, resource.size, keepInPlace);
          const auto extension = resource.name.fromLastOccurrenceOf (".", false, false);
          return DefaultFormatManager::getInstance().open (std::move (stream), extension);
      })
{
}

Reader::Reader (StreamMaker makeStreamToUse) : makeStream (std::move (makeStreamToUse)) {}

void Reader::open()
{
    if (opened)
        return;
    opened = true;

    // The probe is thrown away as soon as its values are read.
    const auto probe = makeStream ? makeStream() : nullptr;
    valid = isUsable (probe.get());
    if (! valid)
        return;

    sampleRate = probe->getSampleRate();
    bitsPerSample = probe->getBitsPerSample();
    numChannels = probe->getNumChannels();
    lengthInSamples = probe->getLengthInSamples();
}

double Reader::getSampleRate()
{
    open();
    return sampleRate;
}

int Reader::getNumChannels()
{
    open();
    return numChannels;
}

bool Reader::isValid()
{
    open();
    return valid;
}

juce::int64 Reader::getLengthInSamples()
{
    open();
    return lengthInSamples;
}

int Reader::getBitsPerSample()
{
    open();
    return bitsPerSample;
}

std::unique_ptr<SourceReader> Reader::createReader() const
{
    auto stream = makeStream ? makeStream() : nullptr;
    if (! isUsable (stream.get()))
        return nullptr;
    return std::make_unique<FileSourceReader> (std::move (stream));
}
} // namespace Orv::Audio::Sampler::Source
