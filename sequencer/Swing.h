#pragma once

namespace Orv::Sequencer
{
/** How the events of a pattern are bent: within each period of `period`
    quarter notes, the middle of the period moves to `middle` of it. A middle
    of 0.5 bends nothing. A plain value; any thread. */
struct SwingPair
{
    double middle = 0.5;
    double period = 1.0;
};

/** Any thread: the pair for the swing control's normalised value (0.5 at no
    swing) and the index of the swing reference ("1/8", "1/4", "1/2"). The
    ends of the control are compressed so that the middle stays within
    0.1005 to 0.8995; an unknown index gives a period of one quarter note. */
SwingPair makeSwingPair (float normalisedSwing, int referenceIndex) noexcept;

/** Any thread: the period in quarter notes of a swing reference index. */
double swingPeriodFor (int referenceIndex) noexcept;

/** Any thread: a time in quarter notes bent by a smooth power curve over its
    period, so that half the period lands at `middle` of it. The start and end
    of every period stay where they are, so a time on a period boundary maps
    to itself. A time before 0 whose remainder is negative lands on the start
    of its period. */
double swungTime (double middle, double period, double time);
} // namespace Orv::Sequencer
