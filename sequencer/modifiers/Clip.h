#pragma once

#include "sequencer/Span.h"
#include "sequencer/modifiers/Holder.h"

namespace Orv::Sequencer::Modifiers
{
/** A window on one modifier: what starts inside the span is kept, moved so
    that the span starts at 0, and cut at the span's end. An empty span
    keeps everything and the held modifier's length. Message thread only. */
class Clip : public Cloneable<Base, Clip>
{
public:
    /** Does nothing when disabled. */
    void evaluate (PatternData& result) const override;

    /** "enabled", "Mod", "Time". */
    void reflectMembers (Reflector& reflector) override;

    bool enabled = true;
    Holder mod;
    Ranges::Span<double> time;
};
} // namespace Orv::Sequencer::Modifiers
