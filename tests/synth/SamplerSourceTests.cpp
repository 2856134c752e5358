#include "synth/DefaultFormatManager.h"
#include "synth/ResampledInternalBuffer.h"
#include "synth/source/Reader.h"
#include "synth/source/SourceReader.h"

#include <gtest/gtest.h>
#include <juce_audio_formats/juce_audio_formats.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

namespace
{
using Orv::Audio::Sampler::ResampledInternalBuffer;
using Orv::Audio::Sampler::Source::Reader;

constexpr double fileRate = 48000.0;
constexpr int fileFrames = 300;
constexpr int blockSize = 512;

// Values a 16-bit file holds exactly, different on each side.
float sampleAt (int channel, int frame)
{
    constexpr float step = 1.0f / 32768.0f;
    return static_cast<float> ((frame * 37 + channel * 1000) % 20000 - 10000) * step;
}

juce::MemoryBlock makeWav (int numChannels, double rate = fileRate, int frames = fileFrames)
{
    juce::AudioBuffer<float> audio (numChannels, frames);
    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < frames; ++i)
            audio.setSample (c, i, sampleAt (c, i));

    juce::MemoryBlock block;
    {
        juce::WavAudioFormat wav;
        constexpr int bits = 16;
        std::unique_ptr<juce::AudioFormatWriter> writer (
            wav.createWriterFor (new juce::MemoryOutputStream (block, false), rate, static_cast<unsigned int> (numChannels), bits, {}, 0));
        writer->writeFromAudioSampleBuffer (audio, 0, frames);
    }
    return block;
}

Orv::Binaries::BinaryInfo asResource (const juce::MemoryBlock& block, const juce::String& name)
{
    return { name, static_cast<const char*> (block.getData()), block.getSize() };
}

std::shared_ptr<const juce::AudioBuffer<float>> readAt (std::shared_ptr<Orv::Audio::Sampler::Source::Base> source, double rate)
{
    ResampledInternalBuffer buffer (std::move (source));
    buffer.useWorker = false;
    buffer.setTarget (blockSize, rate);
    return buffer.getBuffer();
}

/** A source that counts how often it is opened for reading. */
struct CountingSource : Orv::Audio::Sampler::Source::Base
{
    double getSampleRate() override { return fileRate; }
    int getNumChannels() override { return 1; }
    bool isValid() override { return valid; }
    juce::int64 getLengthInSamples() override { return fileFrames; }

    std::unique_ptr<Orv::Audio::Sampler::Source::SourceReader> createReader() const override
    {
        ++readersMade;
        return inner.createReader();
    }

    bool valid = true;
    mutable std::atomic<int> readersMade { 0 };
    juce::MemoryBlock wav = makeWav (1);
    Reader inner { asResource (wav, "counting.wav") };
};

bool waitForNoJobs (const ResampledInternalBuffer& buffer)
{
    constexpr auto limit = std::chrono::seconds (5);
    const auto start = std::chrono::steady_clock::now();
    while (buffer.getNumPendingJobs() > 0)
    {
        if (std::chrono::steady_clock::now() - start > limit)
            return false;
        std::this_thread::sleep_for (std::chrono::milliseconds (1));
    }
    return true;
}

//==============================================================================
TEST (SamplerSources, OpenByTheirExtensionInAnyCaseOrByContentWhenTheExtensionLies)
{
    const auto stereo = makeWav (2);
    for (const auto* name : { "a.wav", "A.WAV", "wrong.flac", "none" })
    {
        Reader reader (asResource (stereo, name));
        EXPECT_TRUE (reader.isValid()) << name;
        EXPECT_EQ (reader.getSampleRate(), fileRate) << name;
        EXPECT_EQ (reader.getNumChannels(), 2) << name;
        EXPECT_EQ (reader.getLengthInSamples(), fileFrames) << name;
        EXPECT_EQ (reader.getBitsPerSample(), 16) << name;
    }
}

TEST (SamplerSources, WhatCannotBeOpenedIsInvalidWithAllValuesZero)
{
    const auto folder = juce::File::createTempFile ("sources");
    folder.createDirectory();
    const auto garbage = folder.getChildFile ("garbage.wav");
    garbage.replaceWithText ("RIFF but not really a wave file at all");
    const juce::MemoryBlock truncated (makeWav (2).getData(), 20);

    // A tiny file whose data chunk claims four gigabytes.
    auto claimsTooMuch = makeWav (2);
    const auto* bytes = static_cast<const char*> (claimsTooMuch.getData());
    const auto* tag = std::search (bytes, bytes + claimsTooMuch.getSize(), "data", "data" + 4);
    ASSERT_LT (tag, bytes + claimsTooMuch.getSize());
    claimsTooMuch.copyFrom ("\xf0\xff\xff\xff", tag - bytes + 4, 4);

    Reader fromGarbage (garbage), fromMissing (folder.getChildFile ("missing.wav")),
        fromTruncated (asResource (truncated, "t.wav")), fromHugeHeader (asResource (claimsTooMuch, "h.wav")),
        fromNothing (Reader::StreamMaker {});

    for (auto* reader : { &fromGarbage, &fromMissing, &fromTruncated, &fromHugeHeader, &fromNothing })
    {
        EXPECT_FALSE (reader->isValid());
        EXPECT_EQ (reader->getSampleRate(), 0.0);
        EXPECT_EQ (reader->getNumChannels(), 0);
        EXPECT_EQ (reader->getLengthInSamples(), 0);
        EXPECT_EQ (reader->createReader(), nullptr);
        EXPECT_EQ (readAt (std::make_shared<Reader> (*reader), fileRate)->getNumSamples(), 0);
    }
    folder.deleteRecursively();
}

TEST (SamplerSources, ProbeOpensOnceAndOnlyWhenAsked)
{
    const auto wav = makeWav (1);
    int opens = 0;
    Reader reader ([&] {
        ++opens;
        return Orv::Audio::DefaultFormatManager::getInstance().open (
            std::make_unique<juce::MemoryInputStream> (wav, false), "wav");
    });

    EXPECT_EQ (opens, 0);
    reader.isValid();
    reader.getSampleRate();
    reader.getLengthInSamples();
    EXPECT_EQ (opens, 1);
    EXPECT_NE (reader.createReader(), nullptr);
    EXPECT_EQ (opens, 2);
}

//==============================================================================
TEST (ResampledBuffer, AtTheFilesOwnRateTheSamplesPassUnchangedInBothChannels)
{
    const auto wav = makeWav (2);
    const auto buffer = readAt (std::make_shared<Reader> (asResource (wav, "x.wav")), fileRate);

    ASSERT_EQ (buffer->getNumChannels(), 2);
    ASSERT_EQ (buffer->getNumSamples(), fileFrames);
    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < fileFrames; ++i)
            ASSERT_EQ (buffer->getSample (c, i), sampleAt (c, i)) << c << " " << i;
}

TEST (ResampledBuffer, AtAnotherRateTheLengthFollowsTheRatioAndAMonoFileStaysMono)
{
    const auto wav = makeWav (1);
    for (const auto& [target, frames] : { std::pair { 2.0 * fileRate, 2 * fileFrames }, { 10.0 * fileRate, 10 * fileFrames },
                                          { fileRate / 3.0, fileFrames / 3 } })
    {
        const auto buffer = readAt (std::make_shared<Reader> (asResource (wav, "m.wav")), target);
        EXPECT_EQ (buffer->getNumChannels(), 1);
        EXPECT_EQ (buffer->getNumSamples(), frames) << target;
    }
}

TEST (ResampledBuffer, NoSourceAnInvalidSourceOrNoRateGiveAnEmptyBufferWithoutReading)
{
    EXPECT_EQ (readAt (nullptr, fileRate)->getNumSamples(), 0);

    auto invalid = std::make_shared<CountingSource>();
    invalid->valid = false;
    EXPECT_EQ (readAt (invalid, fileRate)->getNumSamples(), 0);
    EXPECT_EQ (invalid->readersMade.load(), 0);

    auto valid = std::make_shared<CountingSource>();
    EXPECT_EQ (readAt (valid, 0.0)->getNumSamples(), 0);
    EXPECT_EQ (valid->readersMade.load(), 0);
}

TEST (ResampledBuffer, OnThePoolTheSameTargetTwiceStartsOneJobAndANewTargetAnother)
{
    auto source = std::make_shared<CountingSource>();
    ResampledInternalBuffer buffer (source);

    buffer.setTarget (blockSize, 2.0 * fileRate);
    buffer.setTarget (blockSize, 2.0 * fileRate);
    ASSERT_TRUE (waitForNoJobs (buffer));
    EXPECT_EQ (source->readersMade.load(), 1);
    EXPECT_EQ (buffer.getBuffer()->getNumSamples(), 2 * fileFrames);

    buffer.setTarget (blockSize, fileRate);
    ASSERT_TRUE (waitForNoJobs (buffer));
    EXPECT_EQ (source->readersMade.load(), 2);
    EXPECT_EQ (buffer.getBuffer()->getNumSamples(), fileFrames);
}
} // namespace
