#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

#include "tests/json/json_records.h"

namespace oska::json {
namespace {

TEST(JsonText, UnescapesAndKeepsAllElse) {
    EXPECT_EQ(*decode<std::string>(R"("\"\\\/\b\f\n\r\t\u0041\u00e9\u20AC\ud83d\uDE00a\u0000b")"),
              std::string("\"\\/\b\f\n\r\tA\u00e9\u20ac\U0001F600a\0b", 21));
    EXPECT_EQ(*decode<std::string>("\xEF\xBB\xBF \"\x7f\u2028\uFFFF e\u0301\" "), "\x7f\u2028\uFFFF e\u0301");
    for (const std::string escape :
         {R"(\ud800)", R"(\udc00)", R"(\u12g4)", R"(\u+123)", R"(\u12)", R"(\q)", "\\\u00e9"}) {
        const std::string message = "malformed JSON in line 1: expected an escape of JSON, found " + escape;
        EXPECT_EQ(decodingErrorOf<std::string>('"' + escape + '"'), message);
        EXPECT_EQ(syntaxErrorOf('"' + escape + '"'), message);
    }
}

TEST(JsonDocument, IsCheckedEverywhere) {
    const std::pair<std::string_view, std::string_view> rows[] = {
        {R"("\ud800\ud800")", R"(1: expected an escape of JSON, found \ud800)"},
        {"\"\x80\"", "1: expected UTF-8, found byte 0x80"},
        {"\"\xED\xA0\x80\"", "1: expected UTF-8, found byte 0xed"},
        {"\"a\nb\"", "1: expected an escape, found byte 0x0a"},
        {"\"a\\\x1f\"", "1: expected an escape, found byte 0x1f"},
        {"\"a\\\"", "1: expected a closing quote, found the end"},
        {" \n\t ", "2: expected a value, found the end"},
        {R"({"a":1,})", "1: expected a key, found }"},
        {R"({"a" 1})", "1: expected ':', found 1"},
        {R"({"a":1 "b":2})", "1: expected ',' or '}', found \"b\""},
        {R"({"a":[1,{"b c":[01]}]})", "a[1][\"b c\"][0]: 1: expected a value, found 01"},
        {"{\"a\":\n\n[1,\n 2 3]}", "a: 4: expected ',' or ']', found 3"},
        {"[1,]", "[1]: 1: expected a value, found ]"},
        {"[nullx]", "[0]: 1: expected a value, found nullx"},
        {"[1\"a\"]", "[0]: 1: expected a value, found 1\"a\""},
        {"[1] // no comment", "1: expected the end, found //"},
        {"\\\"", "1: expected a value, found \\\""},
        {"\xEF\xBB\xBF\xEF\xBB\xBF[]", "1: expected a value, found \xEF\xBB\xBF"},
        {std::string_view("{}\0", 3), "1: expected the end, found \\u0000"},
    };
    for (const auto& [text, expected] : rows) {
        std::string message = syntaxErrorOf(text);
        if (text.starts_with('{')) {
            EXPECT_EQ(decodingErrorOf<Nothing>(text), message) << text;
        }
        message.replace(message.find("malformed JSON in line "), 23, "");
        EXPECT_EQ(message, expected) << text;
    }
    EXPECT_EQ(syntaxErrorOf("\t[ 1 ,\r\n\"a\"\t]\n"), "none");
    for (const std::string blank : {"\f", "\v", "\x1a", "\x7f", "\u00a0", "\u2003", "\uFEFF"}) {
        for (const std::string& document : {"[" + blank + "1]", "[1" + blank + "]", "[\"a\"]" + blank})
            EXPECT_NE(syntaxErrorOf(document), "none") << document;
    }
}

// The library underneath asks for padding in general, but not for the one stage that is used.
TEST(JsonDocument, FailsWhenItIsCutOffAnywhereAndIsNotReadBeyondItsEnd) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    auto* const pages = static_cast<char*>(
        mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(static_cast<void*>(pages), MAP_FAILED);
    ASSERT_EQ(mprotect(pages + page, page, PROT_NONE), 0);
    const std::string whole =
        R"({"doors":[{"id":1,"name":"\u00e9","width":2.5,"tags":["x"]}],"new":[null,"😀"],"rooms":{},"open":true})";
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        for (std::size_t blanks = 0; blanks < 64; ++blanks) {
            const std::string text = std::string(blanks, ' ') + whole.substr(0, length);
            char* const begin = pages + page - text.size();
            std::copy(text.begin(), text.end(), begin);
            EXPECT_EQ(decodingErrorOf<House>({begin, text.size()}) == "none", length == whole.size()) << text;
        }
    }
    munmap(pages, 2 * page);
}

TEST(JsonDocument, NestsTo512) {
    const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_THAT(syntaxErrorOf(nested(513)),
                testing::HasSubstr("expected at most 512 nested arrays and objects"));
    EXPECT_EQ(decodingErrorOf<Nothing>("{\"a\":" + nested(511) + ",\"b\":" + nested(511) + "}"), "none");
    EXPECT_LT(decodingErrorOf<Nothing>("{\"a\":" + nested(512) + "}").size(), 600u);
    std::string objects;
    for (int i = 0; i < 1'000'000; ++i) objects += "{\"a\":";
    EXPECT_NE(syntaxErrorOf(objects), "none");
}

// Long documents are indexed in stretches of 128 KiB, cut at commas; some commas stand in strings, some
// strings are longer than any stretch.
TEST(JsonDocument, MayBeLongerThanOneStretch) {
    House house;
    for (std::size_t i = 0; i < 3000; ++i) {
        const std::string filler(i % 300, i % 2 == 0 ? ',' : '"');
        house.doors.push_back(
            {static_cast<std::int64_t>(i), "},{" + filler + "},", 0.5, {filler, ",", "\\"}});
    }
    house.doors[1000].name = std::string(700'000, ',');
    house.doors[1001].name = std::string(700'000, '\\') + "},";
    for (int i = 0; i < 26; ++i) house.rooms[std::string(1, static_cast<char>('a' + i))] = i;
    const std::string text = encodingOf(house);
    EXPECT_TRUE(*decode<House>(text) == house);
    EXPECT_EQ(syntaxErrorOf(text), "none");

    std::string broken = text;
    broken.replace(text.rfind("\"id\":2999"), 9, "\"id\":29.5");
    EXPECT_EQ(decodingErrorOf<House>(broken), "doors[2999].id: expected an integer, found 29.5");
    EXPECT_EQ(syntaxErrorOf(text.substr(0, text.rfind("},\"open"))),
              "rooms: malformed JSON in line 1: expected ',' or '}', found the end");
    EXPECT_EQ(syntaxErrorOf("\n" + text.substr(0, 1'000'000) + '\x01'),
              "malformed JSON in line 2: expected an escape, found byte 0x01");
}

}  // namespace
}  // namespace oska::json
