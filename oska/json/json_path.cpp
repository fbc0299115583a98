#include "oska/json/json_path.h"

#include <algorithm>

#include "oska/text/control_escape.h"

namespace oska::json {
namespace {

constexpr std::size_t LONGEST_EXCERPT = 60;
constexpr std::size_t LONGEST_PATH = 400;

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

bool isName(std::string_view key) {
    return !key.empty() && std::all_of(key.begin(), key.end(), isNameCharacter);
}

bool isContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

std::string_view shortened(std::string_view text, std::size_t length) {
    while (length > 0 && isContinuationByte(text[length])) --length;
    return text.substr(0, length);
}

void prepend(std::string& path, std::string step) {
    if (!path.empty() && path.front() != '[') step += '.';
    path.insert(0, step);
    if (path.size() > LONGEST_PATH) path = std::string(shortened(path, LONGEST_PATH)) + "...";
}

}  // namespace

void prependKey(std::string& path, std::string_view key) {
    prepend(path, isName(key) ? excerpt(key) : "[\"" + excerpt(key) + "\"]");
}

void prependIndex(std::string& path, std::size_t index) { prepend(path, "[" + std::to_string(index) + "]"); }

std::string excerpt(std::string_view text) {
    const bool whole = text.size() <= LONGEST_EXCERPT;
    std::string shown;
    for (const char c : whole ? text : shortened(text, LONGEST_EXCERPT)) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            text::appendUnicodeEscape(shown, c);
        } else {
            shown += c;
        }
    }
    return whole ? shown : shown + "...";
}

}  // namespace oska::json
