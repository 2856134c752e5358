#include "persistence/ReflectedValue.h"

#include <gtest/gtest.h>

#include <cstdlib>

using Orv::ReflectedValue;
using Tag = ReflectedValue::Tag;

TEST (ReflectedValue, TextAndNumbersDoNotSlipIntoTheBoolean)
{
    EXPECT_EQ (ReflectedValue ("On").getTag(), Tag::text);
    EXPECT_EQ (ReflectedValue ("On").getText(), "On");
    EXPECT_EQ (ReflectedValue (std::int64_t { 1 } << 40).getInteger(), std::int64_t { 1 } << 40);
    EXPECT_EQ (ReflectedValue (0.25f).getTag(), Tag::real);
    EXPECT_TRUE (ReflectedValue().isEmpty());
}

TEST (ReflectedValue, ToTextGivesWhatAFileWouldShow)
{
    EXPECT_EQ (ReflectedValue (true).toText(), "true");
    EXPECT_EQ (ReflectedValue (false).toText(), "false");
    EXPECT_EQ (ReflectedValue (-42).toText(), "-42");
    EXPECT_EQ (ReflectedValue ("-3.19 dB").toText(), "-3.19 dB");
    EXPECT_EQ (ReflectedValue().toText(), "");
}

TEST (ReflectedValue, RealTextReadsBackToTheSameDouble)
{
    for (double d : { 0.1, 1.0 / 3.0, 4753.56, -1.0e-300, 0.800000011920929 })
    {
        const auto text = ReflectedValue (d).toText();
        EXPECT_EQ (std::strtod (text.c_str(), nullptr), d) << text;
    }

    EXPECT_EQ (ReflectedValue (0.1).toText(), "0.1");
}
