#pragma once

#include "persistence/OwningPointer.h"
#include "sequencer/modifiers/Base.h"

#include <memory>

namespace Orv::Sequencer::Modifiers
{
/** The modifier a clip owns, an Empty by default, never null. A copy holds a
    deep copy; there is no move, so that nothing is left holding null.

    In a file it is one child named after the held kind: "StepPulseSeq",
    "LoopFitter", "TimedSteps", "Pattern" or "NoteList". Any other kind
    (Empty, ModRef) writes none. On load each child present replaces the held
    modifier by a new one of its kind; with none, the held one stays.
    Message thread only. */
class Holder
{
public:
    Holder();
    explicit Holder (std::unique_ptr<Base> modToHold);
    Holder (const Holder& other);
    Holder& operator= (const Holder& other);
    ~Holder();

    /** Never null. */
    Base& get() const noexcept { return *mod; }
    Base* operator->() const noexcept { return mod.get(); }

    /** Replaces the held modifier; a null one becomes an Empty. */
    void set (std::unique_ptr<Base> newMod);

    void reflect (Reflector& reflector);

private:
    OwningPointer<Base> mod;
};
} // namespace Orv::Sequencer::Modifiers
