#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Characters and escapes of JSON strings, and the faults of a text that no token survives.
namespace oska::json {

constexpr bool isWhiteSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

/// Replaces `out` by the text that `escaped`, the inside of a string token, stands for. Fails at an unknown
/// escape and at half a surrogate pair: answers where the bad escape begins.
[[nodiscard]] std::optional<std::size_t> unescape(std::string_view escaped, std::string& out);

/// The part of `escaped` from `offset` on that an error about the escape there should show.
std::string_view escapeAt(std::string_view escaped, std::size_t offset);

struct LexicalFault {
    std::size_t offset;
    std::string expected;
    std::string found;
};

/// The first place where `text` cannot be cut into tokens: a byte that is not UTF-8, a raw control character
/// or the end inside a string. Slow; only for texts known to be bad.
std::optional<LexicalFault> findLexicalFault(std::string_view text);

}  // namespace oska::json
