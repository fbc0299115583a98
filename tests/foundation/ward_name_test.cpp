#include "oska/foundation/ward_name.h"

#include <gtest/gtest.h>

namespace oska {
namespace {

TEST(WardName, DropsCaseOuterBlanksAndComposition) {
    struct Case {
        const char* name;
        const char* key;
    };
    const Case cases[] = {
        {"", ""},
        {" \r\n ", ""},
        {"  TETAM-0012 \n", "tetam-0012"},
        {"Lobby  East!", "lobby  east!"},
        {"\tlobby", "\tlobby"},
        {"\u3000한글 와드\u2003", "한글 와드"},
        {"CAF\u00C9", "caf\u00E9"},
        {"cafe\u0301", "caf\u00E9"},
        {"\u1112\u1161\u11AB", "\uD55C"},
        {"\u212B", "\u00E5"},
        {"\u0130", "i\u0307"},
        {"I\u0307", "i\u0307"},
        {"\u039F\u0394\u039F\u03A3 ", "\u03BF\u03B4\u03BF\u03C2"},
        {"\uFB01", "\uFB01"},
        {"\u0130\u0323", "\u1ECB\u0307"},
        {"\xFF"
         "A\u00C9",
         "\xFF"
         "a\u00E9"},
    };
    for (const auto& [name, key] : cases) EXPECT_EQ(normalizeWardName(name), key) << name;
}

}  // namespace
}  // namespace oska
