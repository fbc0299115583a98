#include "oska/text/one_line.h"

#include "oska/text/control_escape.h"
#include "oska/text/text.h"

namespace oska::text {
namespace {

bool isC1(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 && byte <= 0x9F;
}

// `character`: one character in well-formed UTF-8, or a single byte that is not part of one.
void appendVisibly(std::string& line, std::string_view character) {
    const char last = character.back();
    const auto byte = static_cast<unsigned char>(last);
    const bool isControl = character.size() == 1 && (byte < 0x20 || byte == 0x7F || isC1(last));
    if (isControl) {
        appendControlEscape(line, last);
    } else if (character.size() == 2 && character.front() == '\xC2' && isC1(last)) {
        appendControlEscape(line, last);  // its second byte equals the character's number
    } else if (character == "\xE2\x80\xA8") {
        line += "\\u2028";
    } else if (character == "\xE2\x80\xA9") {
        line += "\\u2029";
    } else {
        line += character;
    }
}

}  // namespace

void appendOnOneLine(std::string& line, std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = firstScalar(text).length;
        appendVisibly(line, text.substr(0, length));
        text.remove_prefix(length);
    }
}

std::string onOneLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    appendOnOneLine(line, text);
    return line;
}

}  // namespace oska::text
