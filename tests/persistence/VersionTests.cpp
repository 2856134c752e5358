#include "persistence/Version.h"

#include <gtest/gtest.h>

using Orv::Version;

TEST (Version, ComparesMajorThenMinorThenPatch)
{
    const Version ordered[] { { 0, 9, 9 }, { 1, 0, 0 }, { 1, 0, 3 }, { 1, 2, 0 }, { 1, 10, 0 }, { 2, 0, 0 } };

    for (size_t i = 0; i < std::size (ordered); ++i)
    {
        for (size_t j = 0; j < std::size (ordered); ++j)
        {
            EXPECT_EQ (ordered[i] < ordered[j], i < j) << i << " " << j;
            EXPECT_EQ (ordered[i] == ordered[j], i == j) << i << " " << j;
            EXPECT_EQ (ordered[i] >= ordered[j], i >= j) << i << " " << j;
        }
    }
}
