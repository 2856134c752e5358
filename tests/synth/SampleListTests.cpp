#include "core/Binaries.h"
#include "synth/SampleList.h"
#include "synth/source/Reader.h"

#include <gtest/gtest.h>
#include <juce_audio_formats/juce_audio_formats.h>

#include <cmath>
#include <complex>

namespace
{
using Orv::Audio::WavetableSynth::SampleList;

constexpr double tableRate = 1920000.0;
constexpr auto wavetableGroup = "Wavetables";

const juce::StringArray expectedNames {
    "Basics - ARP", "Basics - Detuned ARP", "Basics - DingwallA", "Basics - DingwallB", "Basics - DingwallE",
    "Basics - Fair Square", "Basics - First", "Basics - Retro", "Basics - SAW 2", "Basics - SQR", "Basics - Saw",
    "Basics - Sine", "Basics - Square", "Basics - TRI",
    "Buzzy - Buzz", "Buzzy - Checks Out", "Buzzy - Fattie Pattie", "Buzzy - Flat", "Buzzy - Spiky", "Buzzy - Triaj",
    "Classics - Another Saw", "Classics - Bass Boy", "Classics - Its a Prophet", "Classics - OP Vibes",
    "Classics - Octaves", "Classics - Res His", "Classics - Rich", "Classics - Sined Harm", "Classics - Sined up",
    "Classics - Super Mooj",
    "Hammond - Hammond 10", "Hammond - Hammond 11", "Hammond - Hammond 12", "Hammond - Hammond 13",
    "Hammond - Hammond 14", "Hammond - Hammond 15", "Hammond - Hammond 16", "Hammond - Hammond 17",
    "Hammond - Hammond 5", "Hammond - Hammond 6", "Hammond - Hammond 7", "Hammond - Hammond 8", "Hammond - Hammond 9",
    "Middy - Cuts Through", "Middy - Ducky", "Middy - Intimate", "Middy - Knife", "Middy - Knit and Grit",
    "Middy - Mellow", "Middy - Nasal", "Middy - Oboe", "Middy - Slingy", "Middy - Vibration",
    "Organ - Basics Organ 2", "Organ - Basics Organ", "Organ - Cheap Organ", "Organ - Church", "Organ - Harmonium",
    "Organ - Healthy", "Organ - Orchestral", "Organ - Oregano",
    "Smooth - Clicky", "Smooth - Floot", "Smooth - Medow", "Smooth - Soothing", "Smooth - Thin and Clean",
    "Special - Malfunction", "Special - Neat", "Special - Noisy", "Special - Sharp", "Special - Skinny"
};

const SampleList::Entry& table (const juce::String& name)
{
    const auto& list = SampleList::getInstance();
    const auto index = expectedNames.indexOf (name);
    EXPECT_GE (index, 0) << name;
    return list.at (static_cast<size_t> (index));
}

/** Magnitude of harmonics 1..count of a table read as one period. */
std::vector<double> harmonics (const juce::AudioBuffer<float>& samples, int count, int channel = 0)
{
    const auto n = samples.getNumSamples();
    std::vector<std::complex<double>> turn (static_cast<size_t> (n));
    for (int i = 0; i < n; ++i)
        turn[static_cast<size_t> (i)] = std::polar (1.0, -2.0 * juce::MathConstants<double>::pi * i / n);

    std::vector<double> result (static_cast<size_t> (count) + 1);
    const auto* data = samples.getReadPointer (channel);
    for (int h = 1; h <= count; ++h)
    {
        std::complex<double> sum;
        for (int i = 0; i < n; ++i)
            sum += static_cast<double> (data[i]) * turn[static_cast<size_t> ((static_cast<juce::int64> (h) * i) % n)];
        result[static_cast<size_t> (h)] = std::abs (sum);
    }
    return result;
}

double decibels (double ratio) { return 20.0 * std::log10 (ratio); }

/** A wave folder on the test's desktop for as long as it lives. */
struct DesktopWaveFolder
{
    DesktopWaveFolder() { folder.createDirectory(); }
    ~DesktopWaveFolder() { folder.deleteRecursively(); }

    void addSine (const juce::String& path, double rate, std::vector<float> amplitudes)
    {
        constexpr int frames = 1920;
        constexpr int periods = 4;
        const auto numChannels = static_cast<int> (amplitudes.size());
        juce::AudioBuffer<float> audio (numChannels, frames);
        for (int c = 0; c < numChannels; ++c)
            for (int i = 0; i < frames; ++i)
                audio.setSample (c, i, amplitudes[static_cast<size_t> (c)]
                                           * std::sin (juce::MathConstants<float>::twoPi * periods * i / frames));

        const auto file = folder.getChildFile (path);
        file.getParentDirectory().createDirectory();
        juce::WavAudioFormat wav;
        constexpr int bits = 24;
        std::unique_ptr<juce::AudioFormatWriter> writer (
            wav.createWriterFor (file.createOutputStream().release(), rate, static_cast<unsigned int> (numChannels), bits, {}, 0));
        writer->writeFromAudioSampleBuffer (audio, 0, frames);
    }

    const juce::File folder =
        juce::File::getSpecialLocation (juce::File::userDesktopDirectory).getChildFile ("TrevalisWavetables");
};

//==============================================================================
TEST (SampleList, HoldsTheSeventyOneWavesInCodePointOrderAndTheirTypeNames)
{
    const auto& list = SampleList::getInstance();
    ASSERT_EQ (list.size(), static_cast<size_t> (expectedNames.size()));
    for (size_t i = 0; i < list.size(); ++i)
        EXPECT_EQ (list[i].name, expectedNames[static_cast<int> (i)]);

    const auto typeNames = SampleList::getWaveNames();
    ASSERT_EQ (typeNames.size(), expectedNames.size());
    EXPECT_EQ (typeNames[0], "ARP");
    EXPECT_EQ (typeNames[11], "Sine");
    EXPECT_EQ (typeNames[38], "Hammond 5");
    EXPECT_EQ (typeNames[53], "Basics Organ 2");
    EXPECT_EQ (typeNames[70], "Skinny");
    for (int i = 0; i < typeNames.size(); ++i)
        EXPECT_TRUE (expectedNames[i].endsWith (" - " + typeNames[i])) << typeNames[i];

    // Sounds find a table by wave name alone.
    auto unique = typeNames;
    unique.removeDuplicates (false);
    EXPECT_EQ (unique.size(), typeNames.size());
}

TEST (SampleList, EveryTableIsItsFileAtTenTimesA192kHzRateFiniteWithTheFilesChannels)
{
    const auto& list = SampleList::getInstance();
    const auto& group = Orv::Binaries::getGroup (wavetableGroup);
    ASSERT_EQ (group.size(), list.size());

    std::map<int, int> countsByChannels;
    size_t index = 0;
    for (const auto& [fileName, resource] : group)
    {
        const auto& entry = list[index++];
        Orv::Audio::Sampler::Source::Reader file (resource);
        ASSERT_TRUE (file.isValid()) << fileName;
        EXPECT_EQ (file.getBitsPerSample(), 24) << fileName;
        ++countsByChannels[file.getNumChannels()];

        const auto& samples = entry.samples;
        EXPECT_EQ (samples.getNumChannels(), file.getNumChannels()) << fileName;
        EXPECT_EQ (samples.getNumSamples(),
                   juce::roundToInt (static_cast<double> (file.getLengthInSamples()) * tableRate / file.getSampleRate()))
            << fileName;

        float peak = 0.0f;
        for (int c = 0; c < samples.getNumChannels(); ++c)
            for (int i = 0; i < samples.getNumSamples(); ++i)
            {
                ASSERT_TRUE (std::isfinite (samples.getSample (c, i))) << fileName;
                peak = std::max (peak, std::abs (samples.getSample (c, i)));
            }
        EXPECT_GT (peak, 0.1f) << fileName;
        EXPECT_LE (peak, 1.0f) << fileName;
    }

    EXPECT_EQ (countsByChannels[1], 2);
    EXPECT_EQ (countsByChannels[2], 69);
    EXPECT_EQ (table ("Basics - Sine").samples.getNumChannels(), 1);
}

// The list is a process singleton; the folder is read by the same function
// that makes it, called directly.
TEST (SampleList, ADesktopFolderReplacesTheEmbeddedWavesLevelledByTheirFirstChannel)
{
    DesktopWaveFolder desktop;
    desktop.addSine ("Zed - Quiet left.wav", 192000.0, { 0.2f, 0.8f });
    desktop.addSine ("deeper/a - Mono.wav", 96000.0, { 0.5f });
    desktop.folder.getChildFile ("Broken.wav").replaceWithText ("not audio");
    desktop.folder.getChildFile ("Notes.txt").replaceWithText ("not a wave");

    const auto list = SampleList::build();
    ASSERT_EQ (list.size(), 3u);
    EXPECT_EQ (list[0].name, "Broken");
    EXPECT_EQ (list[1].name, "Zed - Quiet left");
    EXPECT_EQ (list[2].name, "a - Mono");

    EXPECT_EQ (list[0].samples.getNumSamples(), 0);
    EXPECT_EQ (list[2].samples.getNumChannels(), 1);
    EXPECT_EQ (list[2].samples.getNumSamples(), 1920 * 20);

    // Both sides take the gain of one minus the left side's RMS, however loud
    // the right side is.
    const auto& stereo = list[1].samples;
    const auto leftRms = 0.2 / std::sqrt (2.0), rightRms = 0.8 / std::sqrt (2.0);
    const auto gain = 1.0 - leftRms;
    EXPECT_NEAR (stereo.getRMSLevel (0, 0, stereo.getNumSamples()), leftRms * gain, 0.01 * leftRms);
    EXPECT_NEAR (stereo.getRMSLevel (1, 0, stereo.getNumSamples()), rightRms * gain, 0.01 * rightRms);
}

//==============================================================================
TEST (WavetableSound, SineHasOneHarmonicOnly)
{
    const auto h = harmonics (table ("Basics - Sine").samples, 32);
    for (size_t n = 2; n < h.size(); ++n)
        EXPECT_LT (decibels (h[n] / h[1]), -50.0) << "harmonic " << n;
}

TEST (WavetableSound, SawsFallAsOneOverNAndSquaresKeepOddHarmonicsOnly)
{
    for (const auto* name : { "Basics - Saw", "Basics - SAW 2" })
    {
        const auto h = harmonics (table (name).samples, 16);
        for (size_t n = 2; n < h.size(); ++n)
            EXPECT_NEAR (h[n] / h[1] * static_cast<double> (n), 1.0, 0.1) << name << " harmonic " << n;
    }

    const auto h = harmonics (table ("Basics - Square").samples, 16);
    for (size_t n = 2; n < h.size(); ++n)
    {
        if (n % 2 == 0)
            EXPECT_LT (decibels (h[n] / h[1]), -50.0) << "harmonic " << n;
        else
            EXPECT_NEAR (h[n] / h[1] * static_cast<double> (n), 1.0, 0.1) << "harmonic " << n;
    }
}

TEST (WavetableSound, AnOrganRegistrationSoundsOnlyAtDrawbarFootages)
{
    // Footages from 16' to 1' as harmonics of the 16', which is the period.
    const std::set<size_t> footages { 1, 2, 3, 4, 6, 8, 10, 12, 16 };
    const auto h = harmonics (table ("Hammond - Hammond 8").samples, 16);
    const auto strongest = *std::max_element (h.begin(), h.end());

    int pipesSounding = 0;
    for (size_t n = 1; n < h.size(); ++n)
    {
        if (footages.count (n) == 0)
            EXPECT_LT (decibels (h[n] / strongest), -50.0) << "harmonic " << n;
        else if (decibels (h[n] / strongest) > -15.0)
            ++pipesSounding;
    }
    EXPECT_GE (pipesSounding, 4);
}

TEST (WavetableSound, NoiseIsFlatAcrossTheBandAndTheBasicShapesAreNot)
{
    constexpr int bandWidth = 64;
    constexpr int bands = 7;
    const auto bandPowers = [] (const char* name) {
        const auto h = harmonics (table (name).samples, bandWidth * bands);
        std::vector<double> powers (bands);
        for (size_t n = 1; n < h.size(); ++n)
            powers[(n - 1) / bandWidth] += h[n] * h[n];
        return powers;
    };
    const auto spread = [] (const std::vector<double>& powers) {
        const auto [low, high] = std::minmax_element (powers.begin(), powers.end());
        return 10.0 * std::log10 (*high / *low);
    };

    EXPECT_LT (spread (bandPowers ("Special - Noisy")), 3.0);
    EXPECT_GT (spread (bandPowers ("Basics - Saw")), 10.0);
}
} // namespace
