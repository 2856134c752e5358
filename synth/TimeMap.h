#pragma once

#include <juce_core/juce_core.h>

#include <vector>

namespace Orv::Audio::AnalogDelay
{
/** The note values of the delay's synced time, longest first, as the
    TimeSync choice lists them. */
class TimeMap
{
public:
    struct Entry
    {
        juce::String name;
        double quarters = 0.0;
    };

    /** TimeSync's default, "1/4". */
    static constexpr int defaultIndex = 2;

    /** Any thread once made; the first call (the delay's parameters are
        built on the message thread) makes the table, which never changes. */
    static const std::vector<Entry>& get()
    {
        static const std::vector<Entry> entries {
            { "1/2", 2.0 },   { "1/4D", 1.5 },   { "1/4", 1.0 },   { "1/8D", 0.75 },
            { "1/8", 0.5 },   { "1/16D", 0.375 }, { "1/16", 0.25 }, { "1/32", 0.125 },
        };
        return entries;
    }

    /** Message thread: the names in table order, for the choice parameter. */
    static juce::StringArray getNames()
    {
        juce::StringArray names;

        for (const auto& entry : get())
            names.add (entry.name);

        return names;
    }
};
} // namespace Orv::Audio::AnalogDelay
