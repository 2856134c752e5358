#include "core/CallbackFunc.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
TEST (CallbackFunc, AnEmptyOneMayBeCalledAndDoesNothing)
{
    Orv::CallbackFunc empty;
    EXPECT_TRUE (empty.isEmpty());
    EXPECT_NO_THROW (empty());

    const Orv::CallbackFunc copy (empty);
    EXPECT_NO_THROW (copy());
}

TEST (CallbackFunc, ChainCallsTheFirstThenTheSecond)
{
    std::string log;
    const auto chained = Orv::chainFunctions ([&] { log += "a"; }, [&] { log += "b"; });
    chained();
    EXPECT_EQ (log, "ab");

    EXPECT_NO_THROW (Orv::chainFunctions ({}, {}) ());
}
} // namespace
