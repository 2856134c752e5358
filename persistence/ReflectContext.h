#pragma once

#include <cstdint>

namespace Orv
{
/** What a reflection pass is for. Every visitor node carries one and hands a
    copy to each child it makes. reflect functions look only at the scope, to
    add members that belong to a plug-in instance but not to a preset; the
    purpose is for the caller's own identification. */
struct ReflectContext
{
    static constexpr std::int32_t presetScope = 0;
    static constexpr std::int32_t instanceScope = 1;

    static constexpr std::int32_t presetPurpose = 0; // a preset file or a factory snapshot
    static constexpr std::int32_t hostStatePurpose = 2;
    static constexpr std::int32_t undoPurpose = 3;

    std::int32_t scope = presetScope;
    std::int32_t purpose = presetPurpose;

    /** The three contexts in use. Undo snapshots are instance-scoped so that
        they hold everything the host's state holds. */
    static constexpr ReflectContext forPreset() noexcept { return { presetScope, presetPurpose }; }
    static constexpr ReflectContext forHostState() noexcept { return { instanceScope, hostStatePurpose }; }
    static constexpr ReflectContext forUndo() noexcept { return { instanceScope, undoPurpose }; }

    /** True when instance-only members take part in the pass. */
    constexpr bool isInstanceScope() const noexcept { return scope == instanceScope; }
};
} // namespace Orv
