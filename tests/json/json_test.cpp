#include "oska/json/json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "oska/json/description.h"
#include "tests/json/json_records.h"

namespace oska::json {
namespace {

using Integers = std::vector<std::int64_t>;

TEST(JsonRecord, TakesItsFieldsInAnyOrderAndTheFirstOfEqualKeys) {
    for (const auto* const text : {
             R"({"id":1,"name":"a","width":2.5,"tags":["x","y"]})",
             R"( { "tags" : [ "x" , "y" ] , "width" : 2.5 , "name" : "a" , "id" : 1 } )",
             R"({"new":{"id":9},"id":1,"ID":[],"name":"a","na":0,"width":2.5,"tags":["x","y"],"tagss":null})",
             R"({"\u0069d":1,"n\u0061me":"a","width":2.5,"tags":["x","y"],"id":2})",
             R"({"id":1,"id":2,"name":"a","tags":["x","y"],"width":2.5,"id":"text","\u006eame":null})",
         })
        EXPECT_EQ(*decode<Door>(text), (Door{1, "a", 2.5, {"x", "y"}})) << text;
    EXPECT_EQ(decode<Door>(R"({"id":1,"name":"a","tags":[],"width":null,"width":2})")->width, std::nullopt);
    EXPECT_EQ(decode<Door>(R"({"id":1,"name":"a","tags":[]})")->width, std::nullopt);
    EXPECT_EQ(
        *decode<House>(R"({"doors":[],"rooms":{"hall":1.5,"attic":2,"hall":3},"colour":"red","open":true})"),
        (House{{}, {{"attic", 2}, {"hall", 1.5}}, Colour{"red"}, true}));
}

TEST(JsonRecord, NamesWhatIsWrongWithItAndWhere) {
    const std::pair<std::string, std::string> rows[] = {
        {R"("doors":["id"],)", "doors[0]: expected an object, found \"id\""},
        {R"("doors":[{"id":1,"id":02,)", "doors[0].id: malformed JSON in line 1: expected a value, found 02"},
        {R"("doors":[{"name":null,)", "doors[0].name: expected text, found null"},
        {R"("doors":[{"tags":["x",2)", "doors[0].tags[1]: expected text, found 2"},
        {R"("rooms":{"hall":1,"hut":"x"})", "rooms.hut: expected a number, found \"x\""},
        {R"("rooms":{"gate\n2":null})", "rooms[\"gate\\u000a2\"]: expected a number, found null"},
        {R"("colour":"none")", "colour: expected a colour, found \"none\""},
        {R"("colour":7)", "colour: expected a colour, found 7"},
        {R"("open":1)", "open: expected true or false, found 1"},
    };
    for (const auto& [text, message] : rows) EXPECT_EQ(decodingErrorOf<House>('{' + text + '}'), message);

    const std::string text = "{\"rooms\":{},\n\"open\":false,\n\"doors\":[{\"id\":1,\n\"name\":\"a\"\n}]}";
    const auto missing = decode<House>(text).error();
    EXPECT_EQ(missing.kind, DecodeError::Kind::missing);
    EXPECT_EQ(missing.path, "doors[0].tags");
    EXPECT_EQ(missing.line, 3u);

    const std::string longest(57, 'x');
    const auto mismatch = decode<Door>("{\"id\":\r\n\"" + longest + "\u20ac\"}").error();
    EXPECT_EQ(mismatch.kind, DecodeError::Kind::mismatch);
    EXPECT_EQ(mismatch.line, 2u);
    EXPECT_EQ(mismatch.found, '"' + longest + "\u20ac\"");
    EXPECT_EQ(decode<Door>("{\"id\":\"" + longest + "x\u20ac\"}").error().found, '"' + longest + "x...\"");
    EXPECT_EQ(decode<Door>(R"({"id":"a\nb"})").error().found, R"("a\nb")");
}

TEST(JsonInteger, IsExactHoweverItIsSpelled) {
    constexpr auto LARGEST = std::numeric_limits<std::int64_t>::max();
    constexpr auto SMALLEST = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(*decode<Integers>("[-70, 7.0, 7E+1, 70e-1, 0.07e2, -0.0, 0e99999999999999999999]"),
              (Integers{-70, 7, 70, 7, 7, 0, 0}));
    EXPECT_EQ(*decode<Integers>("[1e18, 9007199254740993, 9007199254740993.0]"),
              (Integers{1'000'000'000'000'000'000, 9007199254740993, 9007199254740993}));
    EXPECT_EQ(*decode<Integers>("[9223372036854775807, 922337203685477580700e-2, -9223372036854775808, "
                                "-0.9223372036854775808e19]"),
              (Integers{LARGEST, LARGEST, SMALLEST, SMALLEST}));
    EXPECT_EQ(*decode<std::int64_t>("1" + std::string(1000, '0') + "e-1000"), 1);
}

TEST(JsonInteger, IsNothingElse) {
    const std::string expected = "document: expected an integer";
    for (const std::string text : {"-70.5", "15e-1", "9007199254740993.5", "1.0000000000000000000000001",
                                   "1e-400", "\"7\"", "true", "null"})
        EXPECT_EQ(decodingErrorOf<std::int64_t>(text), expected + ", found " + text);
    for (const std::string text :
         {"9223372036854775808", "-9223372036854775809", "1e19", "1e9999999999999999999999",
          "18446744073709551616", "36893488147419103233"})
        EXPECT_EQ(decodingErrorOf<std::int64_t>(text), expected + " of 64 bits, found " + text);
    EXPECT_EQ(decodingErrorOf<std::int64_t>("[7]"), expected + ", found an array");
    EXPECT_EQ(decodingErrorOf<std::int64_t>("{}"), expected + ", found an object");
}

TEST(JsonReal, IsTheNearestDoubleThatThereIs) {
    constexpr double LARGEST = std::numeric_limits<double>::max();
    constexpr double TINIEST = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(
        *decode<std::vector<double>>("[-70.5, 7, 1234567890123456789012345, 0.1234567890123456789012345]"),
        (std::vector{-70.5, 7.0, 1234567890123456789012345.0, 0.1234567890123456789012345}));
    EXPECT_EQ(*decode<std::vector<double>>(
                  "[0.99999999999999999999, 1.7976931348623157e308, 3e-324, 1e-400, 0e999999999]"),
              (std::vector<double>{1, LARGEST, TINIEST, 0, 0}));
    for (const auto* const text : {"-0", "-1e-400"}) EXPECT_TRUE(std::signbit(*decode<double>(text))) << text;
    const std::string tooLarge = "document: expected a number that a double can hold, found ";
    EXPECT_EQ(decodingErrorOf<double>("1e400"), tooLarge + "1e400");
    EXPECT_EQ(decodingErrorOf<double>("-" + std::string(400, '9')),
              tooLarge + "-" + std::string(59, '9') + "...");
    EXPECT_EQ(decodingErrorOf<double>("\"1\""), "document: expected a number, found \"1\"");
}

TEST(JsonNumber, KeepsToTheGrammar) {
    for (const std::string text :
         {"01",    "-01", "00",   ".5",  "5.",  "1.e2",     "+1",        "--1", "-",  "1e", "1e+",
          "1e5.5", "1+5", "0x42", "NaN", "nan", "Infinity", "-Infinity", "inf", "1,", "1_0"}) {
        const auto message = decodingErrorOf<std::int64_t>(text);
        EXPECT_THAT(message, testing::StartsWith("malformed JSON in line 1: ")) << text;
        EXPECT_EQ(decodingErrorOf<double>(text), message);
        EXPECT_NE(syntaxErrorOf("[" + text + "]"), "none") << text;
    }
}

TEST(JsonEncoding, WritesRecordsInFieldOrderWithoutBlanks) {
    const House house{{{1, "a\nb", {}, {}}, {-2, "b", 2.5, {"x", "y"}}},
                      {{"hall", 1}, {"attic", -0.5}},
                      Colour{"red"},
                      true};
    EXPECT_EQ(
        encodingOf(house),
        R"({"doors":[{"id":1,"name":"a\nb","tags":[]},{"id":-2,"name":"b","width":2.5,"tags":["x","y"]}],)"
        R"("rooms":{"attic":-0.5,"hall":1},"colour":"red","open":true})");
    EXPECT_EQ(encodingOf(std::vector<std::optional<bool>>{true, {}, false}), "[true,null,false]");
    EXPECT_EQ(encodingOf(Nothing{}), "{}");
    EXPECT_EQ(encodingOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(describe(house), R"(House(doors: [Door(id: 1, name: "a\nb", width: nil, tags: []), )"
                               R"(Door(id: -2, name: "b", width: 2.5, tags: ["x", "y"])], )"
                               R"(rooms: ["attic": -0.5, "hall": 1], colour: "red", open: true))");
    EXPECT_EQ(describe(std::vector<double>{std::numeric_limits<double>::infinity(), 2}), "[inf, 2]");
}

TEST(JsonEncoding, WritesTheShortestDigits) {
    EXPECT_EQ(encodingOf(std::vector{1.0, -0.0, 0.1, -61.5, 0.0001, 1e5, 1.0 / 3, 9007199254740992.0}),
              "[1,-0,0.1,-61.5,0.0001,100000,0.3333333333333333,9007199254740992]");
    EXPECT_EQ(encodingOf(std::vector{0.00001, 1e16, 5e-324, 1e100, 9007199254740994.0, 9.999999999999999e-5,
                                     std::numeric_limits<double>::max()}),
              "[1e-05,1e+16,5e-324,1e+100,9.007199254740994e+15,9.999999999999999e-05,"
              "1.7976931348623157e+308]");
}

TEST(JsonEncoding, EscapesControlCharactersByDefaultSlashesAndReplacesWhatIsNotUtf8) {
    const std::map<std::string, double> slashes{{"/12345678/", 1}};
    EXPECT_EQ(encodingOf(slashes), R"({"\/12345678\/":1})");
    EXPECT_EQ(*encode(slashes, Slashes::plain), R"({"/12345678/":1})");
    EXPECT_EQ(describe(slashes), R"(["/12345678/": 1])");
    EXPECT_EQ(encodingOf(std::string("\"\\/\b\f\n\r\t\x01\x1f\x7f \u00e9\u2028\U0001F600", 21)),
              "\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0001\\u001f\x7f \u00e9\u2028\U0001F600\"");
    EXPECT_EQ(encodingOf(std::string("a\xFFz\xED\xA0\x80\xE2\x82")),
              "\"a\uFFFDz\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\"");
    for (int c = 0; c < 0x80; ++c) {
        for (std::size_t position = 0; position < 20; ++position) {
            std::string text(20, 'x');
            text[position] = static_cast<char>(c);
            EXPECT_EQ(*decode<std::string>(encodingOf(text)), text) << c;
        }
    }
}

TEST(JsonEncoding, FailsAtNanAndInfinityAndTakesBackWhatItWrote) {
    constexpr double INF = std::numeric_limits<double>::infinity();
    std::string out = "before";
    const auto error =
        append(out, std::vector<House>{{}, {{{1, "a", 1, {}}, {2, "b", std::nan(""), {}}}, {}, {}, true}});
    EXPECT_EQ(error->message(), "[1].doors[1].width: Unable to encode Double.nan directly in JSON.");
    EXPECT_EQ(out, "before");
    EXPECT_EQ(encodingOf(INF), "Unable to encode Double.infinity directly in JSON.");
    EXPECT_EQ(encodingOf(House{{}, {{"a b", -INF}}, {}, true}),
              "rooms[\"a b\"]: Unable to encode -Double.infinity directly in JSON.");
}

}  // namespace
}  // namespace oska::json
