#pragma once

#include <atomic>
#include <cstdint>

namespace Orv::Sequencer
{
/** Whether a drawn note, or a pattern's head, is playing. The playback engine
    writes it on the audio thread and the display polls it, so it must stay a
    lock-free atomic. */
enum class NoteState : std::int32_t
{
    playing = 0,
    notPlaying = 1
};

static_assert (std::atomic<NoteState>::is_always_lock_free, "the audio thread writes NoteState without locks");
} // namespace Orv::Sequencer
