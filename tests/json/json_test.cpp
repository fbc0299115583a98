#include "oska/json/json.h"

#include <gtest/gtest.h>

#include <limits>

#include "oska/json/description.h"
#include "tests/json/json_records.h"

namespace oska::json {
namespace {

TEST(JsonRecord, TakesItsFieldsInAnyOrder) {
    const Door door{1, "a", 2.5, {"x", "y"}};
    for (const auto* const text : {
             R"({"id":1,"name":"a","width":2.5,"tags":["x","y"]})",
             R"( { "tags" : [ "x" , "y" ] , "width" : 2.5 , "name" : "a" , "id" : 1 } )",
             R"({"new":{"id":9},"id":1,"ID":[],"name":"a","na":0,"width":2.5,"tags":["x","y"],"tagss":null})",
             R"({"\u0069d":1,"n\u0061me":"a","width":2.5,"tags":["x","y"]})",
         }) {
        const auto decoded = decode<Door>(text);
        ASSERT_TRUE(decoded) << decoded.error().message();
        EXPECT_EQ(*decoded, door) << text;
    }
}

TEST(JsonRecord, TakesTheFirstOfEqualKeys) {
    EXPECT_EQ(decode<Door>(R"({"id":1,"id":2,"name":"a","tags":[],"id":"text","\u006eame":null})")->id, 1);
    EXPECT_EQ(decode<Door>(R"({"\u0069d":1,"name":"a","tags":[],"id":2})")->id, 1);
    EXPECT_EQ(decode<Door>(R"({"id":1,"name":"a","tags":[],"width":null,"width":2})")->width, std::nullopt);
    EXPECT_EQ(decodingErrorOf<Door>(R"({"id":1,"id":02,"name":"a","tags":[]})"),
              "id: malformed JSON in line 1: expected a value, found 02");
}

TEST(JsonRecord, NeedsItsFields) {
    EXPECT_EQ(decode<Door>(R"({"id":1,"name":"a","tags":[]})")->width, std::nullopt);
    const std::pair<std::string_view, std::string_view> rows[] = {
        {R"({"id":1,"tags":[]})", "name: missing"},
        {R"({"id":1,"name":null,"tags":[]})", "name: expected text, found null"},
        {R"({"id":1,"name":"a","width":"2","tags":[]})", "width: expected a number, found \"2\""},
        {R"({"id":1,"name":"a","tags":["x",2]})", "tags[1]: expected text, found 2"},
        {R"({"id":1,"name":"a","tags":[null]})", "tags[0]: expected text, found null"},
        {R"(["id"])", "document: expected an object, found an array"},
    };
    for (const auto& [text, message] : rows) EXPECT_EQ(decodingErrorOf<Door>(text), message);
    EXPECT_EQ(decodingErrorOf<Nothing>("1"), "document: expected an object, found 1");
}

TEST(JsonRecord, HoldsMapsBooleansAndTextValues) {
    const auto house =
        decode<House>(R"({"doors":[],"rooms":{"hall":1.5,"attic":2,"hut":3},"colour":"red","open":true})");
    ASSERT_TRUE(house) << house.error().message();
    EXPECT_EQ(house->rooms, (std::map<std::string, double, FirstLetterOrder>{{"attic", 2}, {"hall", 1.5}}));
    EXPECT_EQ(house->colour, Colour{"red"});
    EXPECT_TRUE(house->open);

    const std::pair<std::string_view, std::string_view> rows[] = {
        {R"("rooms":{"hall":1,"hut":"x"},"open":true})", "rooms.hut: expected a number, found \"x\""},
        {R"("rooms":{"gate\n2":null},"open":true})",
         "rooms[\"gate\\u000a2\"]: expected a number, found null"},
        {R"("rooms":{},"colour":"none","open":true})", "colour: expected a colour, found \"none\""},
        {R"("rooms":{},"colour":7,"open":true})", "colour: expected a colour, found 7"},
        {R"("rooms":{},"open":1})", "open: expected true or false, found 1"},
    };
    for (const auto& [text, message] : rows)
        EXPECT_EQ(decodingErrorOf<House>(R"({"doors":[],)" + std::string(text)), message);
}

TEST(JsonRecord, ErrorsNamePlaceAndLineInShortTexts) {
    const std::string text = "{\"rooms\":{},\n\"open\":false,\n\"doors\":[{\"id\":1,\n\"name\":\"a\"\n}]}";
    const auto missing = decode<House>(text).error();
    EXPECT_EQ(missing.kind, DecodeError::Kind::missing);
    EXPECT_EQ(missing.path, "doors[0].tags");
    EXPECT_EQ(missing.line, 3u);

    const auto mismatch = decode<Door>("{\"id\":\r\n\"" + std::string(57, 'x') + "\u20ac\"}").error();
    EXPECT_EQ(mismatch.kind, DecodeError::Kind::mismatch);
    EXPECT_EQ(mismatch.line, 2u);
    EXPECT_EQ(mismatch.found, '"' + std::string(57, 'x') + "\u20ac\"");
    EXPECT_EQ(decode<Door>("{\"id\":\"" + std::string(58, 'x') + "\u20ac\"}").error().found,
              '"' + std::string(58, 'x') + "...\"");
    EXPECT_EQ(decode<Door>(R"({"id":"a\nb"})").error().found, R"("a\nb")");
}

TEST(JsonEncoding, WritesRecordsInFieldOrderWithoutBlanks) {
    const House house{
        {{1, "a", {}, {}}, {-2, "b", 2.5, {"x", "y"}}}, {{"hall", 1}, {"attic", -0.5}}, Colour{"red"}, true};
    const std::string text =
        R"({"doors":[{"id":1,"name":"a","tags":[]},{"id":-2,"name":"b","width":2.5,"tags":["x","y"]}],)"
        R"("rooms":{"attic":-0.5,"hall":1},"colour":"red","open":true})";
    EXPECT_EQ(encodingOf(house), text);
    EXPECT_EQ(*decode<House>(text), house);
    EXPECT_EQ(encodingOf(std::vector<std::optional<bool>>{true, {}, false}), "[true,null,false]");
    EXPECT_EQ(encodingOf(Nothing{}), "{}");
    EXPECT_EQ(encodingOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(JsonEncoding, WritesTheShortestDigits) {
    EXPECT_EQ(encodingOf(std::vector{1.0, -0.0, 0.1, -61.5, 0.0001, 1e5, 1.0 / 3, 9007199254740992.0,
                                     -9007199254740991.0}),
              "[1,-0,0.1,-61.5,0.0001,100000,0.3333333333333333,9007199254740992,-9007199254740991]");
    EXPECT_EQ(encodingOf(std::vector{0.00001, 1e16, 5e-324, 1e100, 9007199254740994.0, 9.999999999999999e-5}),
              "[1e-05,1e+16,5e-324,1e+100,9.007199254740994e+15,9.999999999999999e-05]");
    EXPECT_EQ(encodingOf(std::numeric_limits<double>::max()), "1.7976931348623157e+308");
}

TEST(JsonEncoding, EscapesControlCharactersAndByDefaultSlashes) {
    const std::map<std::string, double, std::less<>> slashes{{"/12345678/", 1}};
    EXPECT_EQ(encodingOf(slashes), R"({"\/12345678\/":1})");
    EXPECT_EQ(*encode(slashes, Slashes::plain), R"({"/12345678/":1})");
    EXPECT_EQ(describe(slashes), R"(["/12345678/": 1])");
    EXPECT_EQ(encodingOf(std::string("\"\\/\b\f\n\r\t\x01\x1f\x7f \u00e9\u2028\U0001F600", 21)),
              "\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0001\\u001f\x7f \u00e9\u2028\U0001F600\"");
    EXPECT_EQ(encodingOf(std::string("a\0b", 3)), R"("a\u0000b")");
    for (int c = 0; c < 0x80; ++c) {
        for (std::size_t position = 0; position < 20; ++position) {
            std::string text(20, 'x');
            text[position] = static_cast<char>(c);
            EXPECT_EQ(*decode<std::string>(encodingOf(text)), text) << c;
        }
    }
}

TEST(JsonEncoding, ReplacesBytesThatAreNotUtf8) {
    EXPECT_EQ(encodingOf(std::string("a\xFFz")), "\"a\uFFFDz\"");
    EXPECT_EQ(encodingOf(std::string("\xE2\x82")), "\"\uFFFD\uFFFD\"");
    EXPECT_EQ(encodingOf(std::string("\xED\xA0\x80")), "\"\uFFFD\uFFFD\uFFFD\"");
}

TEST(JsonEncoding, FailsAtNanAndInfinity) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    std::string out = "before";
    const auto error =
        append(out, std::vector<House>{{}, {{{1, "a", 1, {}}, {2, "b", nan, {}}}, {}, {}, true}});
    ASSERT_TRUE(error);
    EXPECT_EQ(error->message(), "[1].doors[1].width: Unable to encode Double.nan directly in JSON.");
    EXPECT_EQ(out, "before");
    EXPECT_EQ(encodingOf(infinity), "Unable to encode Double.infinity directly in JSON.");
    EXPECT_EQ(encodingOf(House{{}, {{"a b", -infinity}}, {}, true}),
              "rooms[\"a b\"]: Unable to encode -Double.infinity directly in JSON.");
}

TEST(Description, NamesTypesAndFieldsInOneLine) {
    const House house{{{1, "a\nb", {}, {}}}, {{"hall", 1}, {"attic", -0.5}}, Colour{"red"}, true};
    EXPECT_EQ(
        describe(house),
        R"(House(doors: [Door(id: 1, name: "a\nb", width: nil, tags: [])], rooms: ["attic": -0.5, "hall": 1], )"
        R"(colour: "red", open: true))");
    EXPECT_EQ(describe(std::vector<double>{std::numeric_limits<double>::infinity(), 2}), "[inf, 2]");
}

}  // namespace
}  // namespace oska::json
