#include "oska/text/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

namespace oska::text {
namespace {

std::string utf8(char32_t scalar) {
    std::string text;
    appendScalar(text, static_cast<std::int32_t>(scalar));
    return text;
}

const char* const NOT_UTF8[] = {"\x80",     "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                                "\xE3\x80", "\xFF"};

TEST(Text, FindsBytesBeyondAsciiAtEveryPosition) {
    for (std::size_t size = 0; size < 40; ++size) {
        EXPECT_TRUE(isAscii(std::string(size, '\x7F')));
        for (std::size_t at = 0; at < size; ++at) {
            std::string text(size, 'a');
            text[at] = '\x80';
            EXPECT_FALSE(isAscii(text)) << at << " of " << size;
            EXPECT_FALSE(isUtf8(text)) << at << " of " << size;
        }
    }
    EXPECT_TRUE(isUtf8(std::string("a\0\u00E9\uFFFF\U0010FFFF", 11)));
    for (const std::string text : NOT_UTF8) {
        EXPECT_FALSE(isUtf8("\u00E9" + text));
        EXPECT_EQ(firstScalar(text).value, -1);
        EXPECT_EQ(firstScalar(text).length, 1u);
    }
}

TEST(Text, TrimmingRemovesExactlyTheBlanksAndStopsAtBrokenBytes) {
    const std::set<char32_t> blanks = {0x0A,   0x0B,   0x0C,   0x0D,   0x20,   0x85,   0xA0,   0x1680,
                                       0x2000, 0x2001, 0x2002, 0x2003, 0x2004, 0x2005, 0x2006, 0x2007,
                                       0x2008, 0x2009, 0x200A, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
    for (char32_t scalar = 0; scalar <= 0x10FFFF; ++scalar) {
        if (scalar >= 0xD800 && scalar <= 0xDFFF) continue;
        const auto [value, length] = firstScalar(utf8(scalar) + "\x80");
        ASSERT_EQ(static_cast<char32_t>(value), scalar);
        ASSERT_EQ(length, utf8(scalar).size());
        const auto inside = utf8(scalar) + "\u00E9" + utf8(scalar);
        const auto expected = blanks.contains(scalar) ? "\u00E9" : inside;
        ASSERT_EQ(trimmed("\n " + inside + "\u3000\r\n"), expected)
            << std::hex << static_cast<unsigned>(scalar);
    }
    EXPECT_EQ(trimmed(" \u2028\r\n"), "");
    EXPECT_EQ(trimmed(" \u0301a \u0301 "), "\u0301a \u0301");
    EXPECT_EQ(trimmed(" \x80 \xC2\x85\x85 "), "\x80 \xC2\x85\x85");
    EXPECT_EQ(trimmed(" \xE3\x80 "), "\xE3\x80");
    EXPECT_EQ(trimmed("\xE3\u3000"), "\xE3");
}

TEST(Text, LowerCaseIsTheFullDefaultMapping) {
    const std::pair<const char*, const char*> rows[] = {
        {"@AZ[`az{ABCDEFGHIJKLMNOPQRSTUVWXYZ-0123456789", "@az[`az{abcdefghijklmnopqrstuvwxyz-0123456789"},
        {"\u00C9\u1E9E\u212A\u01C5\U00010400", "\u00E9\u00DFk\u01C6\U00010428"},
        {"\u0130I\u0131 한글 漢字", "i\u0307i\u0131 한글 漢字"},
        // A capital sigma: at the end, alone, at the start and inside of words.
        {"\u0391\u03A3", "\u03B1\u03C2"},
        {"\u03A3 \u03A3\u0391 1\u03A3", "\u03C3 \u03C3\u03B1 1\u03C3"},
        {"\u0391\u03A3\u0391\u03A3 \u03A3", "\u03B1\u03C3\u03B1\u03C2 \u03C3"},
        // Beside scalars that are ignored, and beside a hyphen, which is not.
        {"\u0391.\u0301\u03A3 \u0391\u03A3'\u0301", "\u03B1.\u0301\u03C2 \u03B1\u03C2'\u0301"},
        {"\u0391\u03A3\u00AD\u0391 \u0391\u03A3-\u0391", "\u03B1\u03C3\u00AD\u03B1 \u03B1\u03C2-\u03B1"},
        // Beside cased symbols, a modifier letter, and bytes that are not UTF-8.
        {"\u2160\u03A3 \u0391\u03A3\u00AA", "\u2170\u03C2 \u03B1\u03C3\u00AA"},
        {"\U0001F130\u03A3 \u02B0\u03A3 \u0391\u02B0\u03A3",
         "\U0001F130\u03C2 \u02B0\u03C3 \u03B1\u02B0\u03C2"},
        {"A\xFF\u03A3\xC3", "a\xFF\u03C3\xC3"},
    };
    for (const auto& [text, lower] : rows) EXPECT_EQ(lowercased(text), lower) << text;
}

TEST(Text, ComposedFormIsCanonicalAndBrokenTextEqualsOnlyItself) {
    const std::pair<const char*, const char*> rows[] = {
        {"abc e\u0301 \uFB01\uFF21", "abc \u00E9 \uFB01\uFF21"},
        {"e\u0323\u0301 e\u0301\u0323 a\u0327\u0300", "\u1EB9\u0301 \u1EB9\u0301 \u00E0\u0327"},
        {"\u1112\u1161\u11AB \uD558\u11AB \uD558\u11A7\u11AB", "\uD55C \uD55C \uD558\u11A7\u11AB"},
        {"\u212B\u2126\u2000", "\u00C5\u03A9\u2002"},
        {"\u0958\u0344 \U0001D15E", "\u0915\u093C\u0308\u0301 \U0001D157\U0001D165"},
    };
    for (const auto& [text, form] : rows) {
        EXPECT_EQ(composed(text), form);
        EXPECT_TRUE(canonicallyEqual(text, form));
    }
    EXPECT_FALSE(canonicallyEqual("\uFB01", "fi"));
    for (const std::string broken : NOT_UTF8) {
        EXPECT_EQ(composed("e\u0301" + broken), "e\u0301" + broken);
        EXPECT_TRUE(canonicallyEqual(broken, broken));
        EXPECT_FALSE(canonicallyEqual("e\u0301" + broken, "\u00E9" + broken));
    }
    // Sorting by insertion would take longer than the test's time-out.
    std::string marks = "q";
    for (int i = 0; i < 300'000; ++i) marks += "\u0301\u0323";
    const auto sorted = composed(marks);
    EXPECT_EQ(sorted.size(), marks.size());
    EXPECT_EQ(sorted.substr(0, 3) + sorted.substr(sorted.size() - 2), "q\u0323\u0301");
}

TEST(Text, OrderIsThatOfComposedScalars) {
    // Ascending; texts of one row are equivalent.
    const std::vector<std::vector<std::string>> rows = {
        {""},
        {"a"},
        {std::string("a\0", 2)},
        {"ez"},
        {"\u00E9", "e\u0301"},
        {"\u00E9a", "e\u0301a"},
        {"\u1EB9\u0301", "e\u0301\u0323", "e\u0323\u0301"},
        {"\uD55C", "\u1112\u1161\u11AB"},
        {"\uFF21"},
        {"\U0001F600"},
        {"\xFF"},
    };
    std::vector<std::pair<std::size_t, std::string>> texts;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (const auto& text : rows[row]) texts.emplace_back(row, text);
    }
    for (const auto& [rowA, a] : texts) {
        for (const auto& [rowB, b] : texts) {
            EXPECT_EQ(CanonicalLess()(a, b), rowA < rowB) << rowA << " " << rowB;
            EXPECT_EQ(canonicallyEqual(a, b), rowA == rowB) << rowA << " " << rowB;
        }
    }
    EXPECT_TRUE((std::set<std::string, CanonicalLess>{"e\u0301"}.contains(std::string_view("\u00E9"))));
}

}  // namespace
}  // namespace oska::text
