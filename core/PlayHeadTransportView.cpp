#include "core/PlayHeadTransportView.h"

namespace Orv::Audio
{
PlayHeadTransportView::PlayHeadTransportView (const InternalPlayHead& playHeadIn, int startIn, int countIn) noexcept
    : stateChanged (startIn == 0 && playHeadIn.hasPlayStateChanged()),
      jumped (startIn == 0 && playHeadIn.hasJumped()),
      playHead (&playHeadIn),
      start (startIn),
      count (countIn)
{
    // A span outside the block would read positions that don't exist.
    jassert (start >= 0 && count >= 0);
    jassert ((size_t) (start + count) <= playHeadIn.getPositions().size());
}

double PlayHeadTransportView::getPpqAt (int index) const noexcept
{
    jassert (index >= 0);

    const auto& positions = playHead->getPositions();
    const auto sample = (size_t) (start + index);

    // An empty span at the block's end starts where the block ends.
    return sample < positions.size() ? positions[sample] : playHead->getBlockEndPpq();
}

juce::Optional<juce::AudioPlayHead::PositionInfo> PlayHeadTransportView::getPosition() const
{
    auto result = playHead->getInfo();
    result.setPpqPosition (getPpqAt (0));
    result.setBpm (result.getBpm().orFallback (InternalPlayHead::defaultTempo));
    result.setTimeInSamples (result.getTimeInSamples().orFallback (0) + start);
    return result;
}
} // namespace Orv::Audio
