#include "sequencer/LivePatterns.h"

#include "persistence/ChildContainerSerializer.h"
#include "sequencer/modifiers/ModRef.h"

namespace Orv::Audio::Plugins::Halvane
{
LivePatterns::LivePatterns()
{
    patterns.reserve (numPatterns);

    for (int i = 0; i < numPatterns; ++i)
        patterns.push_back (std::make_unique<Pattern>());

    rebuild();
}

void LivePatterns::rebuild()
{
    auto& slots = liveSlots.slots;
    slots.clear();
    slots.reserve (patterns.size());
    slots.resize (patterns.size());

    for (size_t i = 0; i < patterns.size(); ++i)
    {
        auto& pattern = *patterns[i];
        pattern.sequence.duration.duration = pattern.getRebuiltLength();
        pattern.sequence.duration.mode = Sequencer::Modifiers::Duration::explicitMode;
        slots[i].clip.mod.set (std::make_unique<Sequencer::Modifiers::ModRef> (&pattern.sequence));
    }

    const auto swing = transport.swingPair();

    for (auto& slot : slots)
        slot.update (swing);

    slotsBroadcaster.call();
    stateBroadcaster.call();
}

void LivePatterns::selectPattern (int index)
{
    if (index >= 0 && index < numPatterns)
        queueKeyswitch (keyswitchNotes[static_cast<size_t> (index)]);
}

void LivePatterns::queueKeyswitch (std::uint8_t note)
{
    // A keyswitch that does not fit is lost: the user presses again.
    queue.push ({ noteOnStatus, note, keyswitchVelocity });
}

void LivePatterns::queueActiveKeyswitch()
{
    // Patterns 1 to 7 by their own notes; anything else, pattern 0 included,
    // by pattern 0's.
    const auto following = liveSlots.live->active.load() - 1;
    const auto lastFollowing = numPatterns - 2;
    const auto index = following >= 0 && following <= lastFollowing ? following + 1 : 0;

    queueKeyswitch (keyswitchNotes[static_cast<size_t> (index)]);
}

void LivePatterns::reflect (Reflector& reflector)
{
    ChildContainerSerializer<OwnedVector<Pattern>> (patterns, "Patterns", "Pattern").add (reflector);
    // The base's own reflect writes the "Sequencer" node; this one hides it.
    reflector.addChild ("Sequencer", static_cast<LiveState&> (*this));

    if (! reflector.isLoading())
        return;

    // Eight patterns, whatever a file holds: the keyswitches and pads reach
    // exactly these.
    // A pattern added here is what an empty entry of the file loads as: the
    // placeholder step of a new pattern lies outside the rows a load keeps.
    patterns.resize (numPatterns);
    for (auto& pattern : patterns)
        if (pattern == nullptr)
        {
            pattern = std::make_unique<Pattern>();
            pattern->sequence.steps.clear();
        }

    // The audio thread takes the loaded pattern by the path a keyswitch takes.
    queueActiveKeyswitch();
    stateBroadcaster.call();
    rebuild();
}
} // namespace Orv::Audio::Plugins::Halvane
