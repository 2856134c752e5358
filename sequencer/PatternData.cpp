#include "sequencer/PatternData.h"

#include <algorithm>

namespace Orv::Sequencer
{
namespace
{
    template <typename Records>
    void clipRecords (Records& records, Ranges::Span<double> span)
    {
        const auto spanEnd = span.getEnd();

        records.erase (std::remove_if (records.begin(), records.end(),
                                       [&] (const auto& r) { return r.time.start < span.start || r.time.start >= spanEnd; }),
                       records.end());

        for (auto& r : records)
            r.time.length = std::max (0.0, std::min (spanEnd, r.getEnd()) - r.time.start);
    }

    template <typename Records>
    void shiftRecords (Records& records, double offset)
    {
        for (auto& r : records)
            r.time.start += offset;
    }

    template <typename Records>
    void appendRecords (Records& records, const Records& others)
    {
        records.insert (records.end(), others.begin(), others.end());
    }

    template <typename Records>
    void sortRecords (Records& records)
    {
        std::sort (records.begin(), records.end(), [] (const auto& a, const auto& b) { return a.time.start < b.time.start; });
    }
} // namespace

void PatternData::clip (Ranges::Span<double> span)
{
    if (span.isEmpty())
        return;

    clipRecords (notes, span);
    clipRecords (heads, span);
    clipRecords (extra, span);
}

void PatternData::shift (double offset)
{
    shiftRecords (notes, offset);
    shiftRecords (heads, offset);
    shiftRecords (extra, offset);
}

void PatternData::append (const PatternData& other)
{
    appendRecords (notes, other.notes);
    appendRecords (heads, other.heads);
    appendRecords (extra, other.extra);
}

void PatternData::sort()
{
    sortRecords (notes);
    sortRecords (heads);
    sortRecords (extra);
}

void PatternData::clearLists()
{
    notes.clear();
    heads.clear();
    extra.clear();
}
} // namespace Orv::Sequencer
