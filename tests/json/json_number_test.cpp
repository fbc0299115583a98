#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/json/json_records.h"

namespace oska::json {
namespace {

using Integers = std::vector<std::int64_t>;
using Reals = std::vector<double>;

TEST(JsonInteger, IsExactHoweverItIsSpelled) {
    constexpr auto LARGEST = std::numeric_limits<std::int64_t>::max();
    constexpr auto SMALLEST = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(
        *decode<Integers>("[7, -70, 7.0, 7e1, 7E+1, 70e-1, 0.07e2, -0, -0.0, 0e5, 0e99999999999999999999]"),
        (Integers{7, -70, 7, 70, 70, 7, 7, 0, 0, 0, 0}));
    EXPECT_EQ(*decode<Integers>("[1e18, 9007199254740993, 9007199254740993.0]"),
              (Integers{1'000'000'000'000'000'000, 9007199254740993, 9007199254740993}));
    EXPECT_EQ(*decode<Integers>("[9223372036854775807, 9223372036854775807.0, 922337203685477580700e-2]"),
              (Integers{LARGEST, LARGEST, LARGEST}));
    EXPECT_EQ(*decode<Integers>("[-9223372036854775808, -0.9223372036854775808e19]"),
              (Integers{SMALLEST, SMALLEST}));
    EXPECT_EQ(*decode<std::int64_t>("1" + std::string(1000, '0') + "e-1000"), 1);
}

TEST(JsonInteger, IsNothingElse) {
    for (const std::string text :
         {"-70.5", "1e-1", "15e-1", "9007199254740993.5", "1.0000000000000000000000001", "1e-400"}) {
        EXPECT_EQ(decodingErrorOf<std::int64_t>(text), "document: expected an integer, found " + text);
    }
    for (const std::string text :
         {"9223372036854775808", "-9223372036854775809", "1e19", "1E400", "1e9999999999999999999999",
          "18446744073709551616", "36893488147419103233"}) {
        EXPECT_EQ(decodingErrorOf<std::int64_t>(text),
                  "document: expected an integer of 64 bits, found " + text);
    }
    for (const std::string text : {"\"7\"", "true", "null"})
        EXPECT_EQ(decodingErrorOf<std::int64_t>(text), "document: expected an integer, found " + text);
    EXPECT_EQ(decodingErrorOf<std::int64_t>("[7]"), "document: expected an integer, found an array");
    EXPECT_EQ(decodingErrorOf<std::int64_t>("{}"), "document: expected an integer, found an object");
}

TEST(JsonReal, IsTheNearestDouble) {
    constexpr double LARGEST = std::numeric_limits<double>::max();
    constexpr double TINIEST = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(*decode<Reals>("[-70.5, 7, 1234567890123456789012345, 0.1234567890123456789012345]"),
              (Reals{-70.5, 7, 1234567890123456789012345.0, 0.1234567890123456789012345}));
    EXPECT_EQ(*decode<Reals>("[0.99999999999999999999, 1.7976931348623157e308, 3e-324, 2e-324]"),
              (Reals{1, LARGEST, TINIEST, 0}));
    EXPECT_EQ(*decode<Reals>("[1e-400, 0e5, 0.00e99999999999]"), (Reals{0, 0, 0}));
    for (const auto* const text : {"-0", "-0.0", "-1e-400"})
        EXPECT_TRUE(std::signbit(*decode<double>(text))) << text;
}

TEST(JsonReal, RefusesWhatNoDoubleHolds) {
    EXPECT_EQ(decodingErrorOf<double>("1e400"),
              "document: expected a number that a double can hold, found 1e400");
    EXPECT_EQ(decodingErrorOf<double>("-" + std::string(400, '9')),
              "document: expected a number that a double can hold, found -" + std::string(59, '9') + "...");
    EXPECT_EQ(decodingErrorOf<double>("\"1\""), "document: expected a number, found \"1\"");
}

TEST(JsonNumber, KeepsToTheGrammar) {
    for (const std::string text :
         {"01",    "-01", "00",   ".5",  "5.",  "1.e2",     "+1",        "--1", "-",  "1e", "1e+",
          "1e5.5", "1+5", "0x42", "NaN", "nan", "Infinity", "-Infinity", "inf", "1,", "1_0"}) {
        EXPECT_THAT(decodingErrorOf<std::int64_t>(text), testing::StartsWith("malformed JSON in line 1: "))
            << text;
        EXPECT_THAT(decodingErrorOf<double>(text), testing::StartsWith("malformed JSON in line 1: ")) << text;
        EXPECT_NE(syntaxErrorOf("[" + text + "]"), "none") << text;
    }
}

}  // namespace
}  // namespace oska::json
