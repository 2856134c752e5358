#include "sequencer/modifiers/Holder.h"

#include "persistence/AddPoly.h"
#include "sequencer/modifiers/Empty.h"
#include "sequencer/modifiers/LoopFitter.h"
#include "sequencer/modifiers/NoteList.h"
#include "sequencer/modifiers/Pattern.h"
#include "sequencer/modifiers/StepPulseSequencer.h"
#include "sequencer/modifiers/TimedSteps.h"

namespace Orv::Sequencer::Modifiers
{
Holder::Holder() : mod (std::make_unique<Empty>()) {}

Holder::Holder (std::unique_ptr<Base> modToHold) : Holder() { set (std::move (modToHold)); }

Holder::Holder (const Holder& other) : mod (other.mod->clone()) {}

Holder& Holder::operator= (const Holder& other)
{
    if (this != &other)
        mod = other.mod->clone();

    return *this;
}

Holder::~Holder() = default;

void Holder::set (std::unique_ptr<Base> newMod)
{
    mod = newMod != nullptr ? std::move (newMod) : std::make_unique<Empty>();
}

// The key names the kind; the order is the order in which a load tries them.
void Holder::reflect (Reflector& reflector)
{
    Serializing::addPoly<StepPulseSequencer> (reflector, "StepPulseSeq", mod);
    Serializing::addPoly<LoopFitter> (reflector, "LoopFitter", mod);
    Serializing::addPoly<TimedSteps> (reflector, "TimedSteps", mod);
    Serializing::addPoly<Pattern> (reflector, "Pattern", mod);
    Serializing::addPoly<NoteList> (reflector, "NoteList", mod);
}
} // namespace Orv::Sequencer::Modifiers
