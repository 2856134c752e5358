#include "sequencer/PatternRunner.h"

#include "midi/NoteMessage.h"

#include <algorithm>
#include <cmath>

namespace Orv::Sequencer
{
namespace
{
constexpr int beatsPerBar = 4;
constexpr int beatUnit = 4;
} // namespace

PatternRunner::PatternRunner()
{
    outMidi.ensureSize (Midi::NoteMessage::bufferBytes);
    triggers.reserve (reservedTriggers);

    // The rate is of no account: the positions are written here, not counted.
    clock.prepare (Audio::InternalPlayHead::defaultSampleRate, initialBlockSize);

    auto& info = clock.getInfo();
    info.setBpm (Audio::InternalPlayHead::defaultTempo);
    info.setTimeSignature (juce::AudioPlayHead::TimeSignature { beatsPerBar, beatUnit });
    info.setIsPlaying (false);

    phase = Phase::running;
}

void PatternRunner::prepare (int samplesPerBlock)
{
    clock.prepare (clock.getSampleRate(), samplesPerBlock);
}

//==============================================================================
void PatternRunner::run (const Audio::PlayHeadTransportView& view, const RunnerSlot& slot)
{
    triggers.clear();
    outMidi.clear();

    // After a jump a pattern lines up with the song's start again.
    if (view.hasJumped())
        origin = 0.0;

    if (phase == Phase::restart)
    {
        phase = Phase::running;
        origin = nextOrigin;
    }

    const auto numSamples = view.getCount();
    if (numSamples <= 0)
        return;

    // The clock carries the view's play state and jump, so that the piece at
    // its first sample reports them as the view does.
    auto& info = clock.getInfo();
    info.setIsPlaying (view.isPlaying());
    info.setPpqPosition (0.0);
    if (view.hasJumped())
        clock.requestJump();
    clock.update (nullptr, numSamples);

    auto& times = clock.getPositions();
    for (int i = 0; i < numSamples; ++i)
        times[(size_t) i] = view.getPpqAt (i) - origin;

    const bool sounds = view.isPlaying() && slot.playing && phase == Phase::running && slot.data != nullptr;
    const auto& data = sounds ? *slot.data : emptyData;

    if (! slot.looping || ! (slot.length > 0.0))
    {
        runPiece (data, 0, numSamples);
    }
    else
    {
        for (auto& t : times)
            t = std::fmod (t, slot.length);

        int pieceStart = 0;
        for (int i = 1; i < numSamples; ++i)
        {
            if (times[(size_t) i] < times[(size_t) i - 1])
            {
                runPiece (data, pieceStart, i - pieceStart);
                pieceStart = i;
            }
        }

        runPiece (data, pieceStart, numSamples - pieceStart);
    }

    std::sort (triggers.begin(),
               triggers.end(),
               [] (const TriggerRecord& a, const TriggerRecord& b) { return a.sampleOffset < b.sampleOffset; });
}

void PatternRunner::runPiece (const PatternData& data, int start, int numSamples)
{
    const Audio::PlayHeadTransportView piece (clock, start, numSamples);
    scheduler.run (piece, data, triggers);
    outMidi.addEvents (scheduler.getOutput(), 0, -1, start);
}
} // namespace Orv::Sequencer
