#include "core/Processor.h"
#include "persistence/JsonText.h"
#include "support/FakeHostPlayHead.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

// The factory libraries as the program carries them: the two embedded
// archives, unpacked by the library's own unpacker, and every file in them
// loaded, played and saved back by the program.
namespace
{
using namespace Orv::Audio::Plugins::Halvane;
using nlohmann::json;

constexpr double sampleRate = 48000.0;
constexpr int blockSize = 2048;
constexpr double samplesPerQuarter = sampleRate / 2.0; // the own clock's 120 BPM

/** The archives unpacked once for all tests, into a folder of their own. */
struct Unpacked
{
    Unpacked()
    {
        root = juce::File::createTempFile ("factory-content");
        unpack (State {}.getFactoryResource(), presets = root.getChildFile ("Presets"));
        SynthParams params;
        unpack (SynthPreset { params }.getFactoryResource(), sounds = root.getChildFile ("Sounds"));
    }

    ~Unpacked() { root.deleteRecursively(); }

    static void unpack (const juce::String& resource, const juce::File& folder)
    {
        const auto* archive = Orv::Binaries::find ({ Orv::Presets::Base::factoryArchiveGroup, resource });
        if (archive != nullptr)
            Orv::Presets::Base::unpackArchive (archive->data, archive->size, folder);
    }

    static const Unpacked& get()
    {
        static const Unpacked unpacked;
        return unpacked;
    }

    juce::File root, presets, sounds;
};

juce::Array<juce::File> filesIn (const juce::File& folder)
{
    auto files = folder.findChildFiles (juce::File::findFiles, true, "*");
    files.sort();
    return files;
}

juce::MemoryBlock bytesOf (const juce::File& file)
{
    juce::MemoryBlock bytes;
    file.loadFileAsData (bytes);
    return bytes;
}

json jsonOf (const juce::File& file) { return Orv::Presets::Base::readJsonFile (file); }

std::map<juce::String, int> countByFolder (const juce::File& root)
{
    std::map<juce::String, int> counts;
    for (const auto& file : filesIn (root))
        ++counts[file.getParentDirectory() == root ? juce::String ("(top)") : file.getParentDirectory().getFileName()];
    return counts;
}

/** Saves the preset as a user would, over a file of its own, and answers
    the file's bytes with the original "id" put back and, where the original
    left its parameters out, "Params" null again after checking that the
    save wrote the defaults there. */
std::string savedBackAs (Orv::Presets::Base& preset, const json& original, const json& defaultParams)
{
    const auto folder = juce::File::createTempFile ("saved");
    const auto target = folder.getChildFile (juce::String (original.at ("name").get<std::string>()) + ".json");
    EXPECT_TRUE (preset.save (target));
    auto saved = jsonOf (target);
    folder.deleteRecursively();

    saved["id"] = original.at ("id");
    if (original.at ("Params").is_null())
    {
        EXPECT_EQ (saved["Params"], defaultParams);
        saved["Params"] = nullptr;
    }
    return Orv::Json::toText (saved) + '\0';
}

std::string textOf (const juce::MemoryBlock& bytes) { return bytes.toString().toStdString() + '\0'; }

/** A processor on its own clock, with the host stopped. */
struct Player
{
    Player()
    {
        clock.stoppedAt (0, 0.0);
        processor.setPlayHead (&clock);
        processor.prepareToPlay (sampleRate, blockSize);
        audio.setSize (2, blockSize);
    }

    std::vector<juce::MidiMessage> run (juce::MidiBuffer in, int64_t samples)
    {
        std::vector<juce::MidiMessage> out;
        for (int64_t done = 0; done < samples; done += blockSize)
        {
            midi.swapWith (in);
            in.clear();
            processor.processBlock (audio, midi);
            for (const auto m : midi)
                out.push_back (m.getMessage());
        }
        return out;
    }

    Orv::Testing::FakeHostPlayHead clock;
    Processor processor;
    juce::AudioBuffer<float> audio;
    juce::MidiBuffer midi;
};

const std::vector<int> cMajor { 60, 64, 67 };

juce::MidiBuffer notes (const std::vector<int>& keys, bool on)
{
    juce::MidiBuffer buffer;
    for (const auto key : keys)
        buffer.addEvent (on ? juce::MidiMessage::noteOn (1, key, (juce::uint8) 100) : juce::MidiMessage::noteOff (1, key), 0);
    return buffer;
}
} // namespace

//==============================================================================
TEST (FactoryContent, TheLibrariesFindBothArchivesUnderTheNamesTheyAskFor)
{
    State state;
    EXPECT_NE (state.findFactoryArchive(), nullptr);
    EXPECT_NE (state.sound.findFactoryArchive(), nullptr);
}

TEST (FactoryContent, ArchivesHoldFiftyNinePresetsAndThirtyFourSoundsInTheirFolders)
{
    const auto& content = Unpacked::get();

    const std::map<juce::String, int> presetFolders { { "(top)", 1 },   { "Artists", 8 },   { "Basic", 12 },
                                                      { "Bass", 8 },    { "Get Creative", 10 }, { "Graphic", 8 },
                                                      { "Odd Meter", 7 }, { "Special", 5 } };
    EXPECT_EQ (countByFolder (content.presets), presetFolders);
    EXPECT_EQ (countByFolder (content.sounds),
               (std::map<juce::String, int> { { "Basics", 8 }, { "Bass", 7 }, { "Staccato", 6 }, { "Pads", 6 }, { "Leads", 7 } }));

    // The files each kind starts with are where it looks for them.
    State state;
    EXPECT_TRUE (content.presets.getChildFile (state.getDefaultFile().getRelativePathFrom (state.getFactoryDirectoryResolved())).existsAsFile());
    EXPECT_TRUE (content.sounds.getChildFile (state.sound.getDefaultFile().getRelativePathFrom (state.sound.getFactoryDirectoryResolved())).existsAsFile());
}

TEST (FactoryContent, EveryFileIsValidForItsOwnKindOnlyWithUniqueIdsAndMostPresetsCarryNoParameters)
{
    const auto& content = Unpacked::get();
    State state;
    int withoutParams = 0;

    for (const auto& [folder, own, other] : { std::tuple<juce::File, Orv::Presets::Base*, Orv::Presets::Base*> {
                                                  content.presets, &state, &state.sound },
                                              { content.sounds, &state.sound, &state } })
    {
        std::set<std::string> ids;
        for (const auto& file : filesIn (folder))
        {
            SCOPED_TRACE (file.getFullPathName());
            const auto j = jsonOf (file);
            EXPECT_TRUE (own->validate (j));
            EXPECT_FALSE (other->validate (j));
            EXPECT_EQ (j.at ("version"), "1.0.3");
            EXPECT_EQ (j.at ("dirty"), false);
            EXPECT_EQ (j.at ("name"), file.getFileNameWithoutExtension().toStdString());
            EXPECT_TRUE (ids.insert (j.at ("id").get<std::string>()).second);
            EXPECT_FALSE (j.at ("Params").contains ("Master")); // the instance's, not the sound's
            withoutParams += j.at ("Params").is_null() ? 1 : 0;
        }
    }
    EXPECT_EQ (withoutParams, 44);
}

TEST (FactoryContent, EveryFileLoadsAndSavesBackToTheSameBytes)
{
    const auto& content = Unpacked::get();
    State state;
    const auto defaultPatternParams = State {}.toJson (Orv::ReflectContext::forPreset())["Params"];

    for (const auto& [folder, preset] : { std::pair<juce::File, Orv::Presets::Base*> { content.presets, &state },
                                          { content.sounds, &state.sound } })
    {
        for (const auto& file : filesIn (folder))
        {
            SCOPED_TRACE (file.getFullPathName());
            const auto original = jsonOf (file);
            ASSERT_FALSE (preset->load (file).is_null());
            EXPECT_EQ (savedBackAs (*preset, original, defaultPatternParams), textOf (bytesOf (file)));
        }
    }
}

TEST (FactoryContent, EveryPatternOfEveryPresetKeepsAllItsStepsAndPlaysChordTones)
{
    const auto& content = Unpacked::get();
    Player player;
    auto& state = player.processor.getState();
    *state.synth.synthEnable = false; // only the notes are looked at here

    for (const auto& file : filesIn (content.presets))
    {
        SCOPED_TRACE (file.getFullPathName());
        const auto original = jsonOf (file);
        ASSERT_FALSE (state.load (file).is_null());
        ASSERT_EQ (state.sequencer.patterns.size(), (size_t) LivePatterns::numPatterns);

        for (int slot = 0; slot < LivePatterns::numPatterns; ++slot)
        {
            SCOPED_TRACE ("pattern " + std::to_string (slot));
            const auto& pattern = *state.sequencer.patterns[(size_t) slot];
            // The load filter dropped nothing: every step lies on a kept row.
            EXPECT_EQ (pattern.sequence.steps.size(), original["Patterns"]["Patterns"][(size_t) slot]["Pattern"]["Steps"].size());

            // A keyswitch while stopped switches at once; play the pattern
            // through once over a held chord, then let go.
            auto in = notes (cMajor, true);
            in.addEvent (juce::MidiMessage::noteOn (1, LivePatterns::keyswitchNotes[(size_t) slot], (juce::uint8) 100), 0);
            const auto length = pattern.getRebuiltLength();
            const auto out = player.run (in, (int64_t) (length * samplesPerQuarter));
            player.run (notes (cMajor, false), blockSize);

            int played = 0;
            for (const auto& m : out)
            {
                if (! m.isNoteOn())
                    continue;
                ++played;
                const auto pitchClass = m.getNoteNumber() % 12;
                EXPECT_TRUE (pitchClass == 0 || pitchClass == 4 || pitchClass == 7) << m.getNoteNumber();
            }
            EXPECT_GT (played, 0);
        }
    }
}

TEST (FactoryContent, EverySoundRendersAHeldNoteAudiblyAndFinitely)
{
    const auto& content = Unpacked::get();
    Player player;
    auto& state = player.processor.getState();
    *state.arp.arpActive = ArpSettings::arpOff; // the key goes straight to the synth

    for (const auto& file : filesIn (content.sounds))
    {
        SCOPED_TRACE (file.getFullPathName());
        ASSERT_FALSE (state.sound.load (file).is_null());

        auto in = notes ({ 60 }, true);
        float peak = 0.0f;
        bool finite = true;
        const auto blocks = (int) (0.4 * sampleRate) / blockSize;
        for (int b = 0; b < blocks; ++b)
        {
            player.run (in, blockSize);
            in.clear();
            for (int channel = 0; channel < player.audio.getNumChannels(); ++channel)
                for (int i = 0; i < blockSize; ++i)
                {
                    const auto sample = player.audio.getSample (channel, i);
                    finite = finite && std::isfinite (sample);
                    peak = std::max (peak, std::abs (sample));
                }
        }
        EXPECT_TRUE (finite);
        EXPECT_GT (peak, 0.01f);
        EXPECT_LT (peak, 4.0f);

        // Let the release and the delay die away before the next sound.
        player.run (notes ({ 60 }, false), (int64_t) (3.0 * sampleRate));
    }
}

TEST (FactoryContent, TheGeneratorWritesTheSameBytesEachRunAsTheBuildEmbedded)
{
    const auto& content = Unpacked::get();
    const auto root = juce::File::createTempFile ("generated");
    const auto runInto = [&] (const juce::String& name)
    {
        const auto folder = root.getChildFile (name);
        juce::ChildProcess generator;
        EXPECT_TRUE (generator.start (juce::StringArray { HALVANE_PRESET_GENERATOR, HALVANE_PATTERN_SOURCE,
                                                          HALVANE_SOUND_SOURCE, HALVANE_PRESET_WAVETABLE_LIST,
                                                          folder.getFullPathName() }));
        generator.waitForProcessToFinish (120000);
        EXPECT_EQ (generator.getExitCode(), 0u) << generator.readAllProcessOutput();
        return folder;
    };

    const auto first = runInto ("first");
    const auto second = runInto ("second");
    for (const auto& kind : { "Presets", "Sounds" })
    {
        const auto embedded = juce::String (kind) == "Presets" ? content.presets : content.sounds;
        const auto files = filesIn (embedded);
        ASSERT_EQ (filesIn (first.getChildFile (kind)).size(), files.size());

        for (const auto& file : files)
        {
            const auto path = file.getRelativePathFrom (embedded);
            SCOPED_TRACE (path);
            EXPECT_EQ (bytesOf (first.getChildFile (kind).getChildFile (path)), bytesOf (file));
            EXPECT_EQ (bytesOf (second.getChildFile (kind).getChildFile (path)), bytesOf (file));
        }
    }
    root.deleteRecursively();
}
