#include "parameters/AtomicBool.h"

#include <gtest/gtest.h>

using Orv::Parameters::AtomicBool;

TEST (AtomicBoolParameter, OneHalfStoresFalse)
{
    std::atomic<std::uint8_t> flag { 1 };
    AtomicBool p (flag);

    p.setNormalisedNotifying (0.5f);
    EXPECT_EQ (flag.load(), 0);

    p.setNormalisedNotifying (0.51f);
    EXPECT_EQ (flag.load(), 1);
}

TEST (AtomicBoolParameter, ReadsOnlyBitZeroOfTheByte)
{
    std::atomic<std::uint8_t> flag { 2 };
    AtomicBool p (flag);
    EXPECT_FLOAT_EQ (p.getNormalised(), 0.0f);
    EXPECT_FALSE (p.getBool());

    flag = 3;
    EXPECT_FLOAT_EQ (p.getNormalised(), 1.0f);
    EXPECT_TRUE (p.getBool());
}

TEST (AtomicBoolParameter, EveryInheritedSetterReachesTheByte)
{
    std::atomic<std::uint8_t> flag { 0 };
    AtomicBool p (flag);

    p.setBool (true);
    EXPECT_EQ (flag.load(), 1);

    p.setInt (0);
    EXPECT_EQ (flag.load(), 0);

    p.setFromText ("1");
    EXPECT_EQ (flag.load(), 1);

    p.setNormalised (0.0f);
    EXPECT_EQ (flag.load(), 0);
}
