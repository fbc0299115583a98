#include "tools/oska/complaint.h"

#include <cstdio>
#include <string>

namespace oska::tool {
namespace {

/// The control character or line separator at the beginning of `text`: how many bytes it has, 0 for none, and
/// its number.
struct Control {
    std::size_t length = 0;
    unsigned number = 0;
};

Control controlAt(std::string_view text) {
    const auto byte = [text](std::size_t i) {
        return static_cast<unsigned>(static_cast<unsigned char>(text[i]));
    };
    if (byte(0) < 0x20 || byte(0) == 0x7F) return {1, byte(0)};
    if (text.size() >= 2 && byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) < 0xA0) return {2, byte(1)};
    if (text.starts_with("\u2028") || text.starts_with("\u2029")) return {3, 0x2000 + (byte(2) & 0x3F)};
    return {};
}

std::string escaped(std::string_view text) {
    constexpr std::string_view HEX = "0123456789abcdef";
    std::string out;
    while (!text.empty()) {
        const auto [length, number] = controlAt(text);
        if (length == 0) {
            out += text.front();
        } else {
            out += "\\u";
            for (const unsigned shift : {12U, 8U, 4U, 0U}) out += HEX[number >> shift & 0xF];
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return out;
}

}  // namespace

void complain(std::string_view line) {
    std::fflush(stdout);
    const auto text = escaped(line) + '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace oska::tool
