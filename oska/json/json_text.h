#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Escapes in JSON strings, and faults that keep a text from being cut into tokens.
namespace oska::json {

constexpr bool isWhiteSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

/// Sets `out` to the text that `escaped`, the inside of a string token, stands for. Returns nullopt on
/// success. At an unknown escape or half a surrogate pair, returns the offset where that escape begins.
[[nodiscard]] std::optional<std::size_t> unescape(std::string_view escaped, std::string& out);

/// The escape at `offset`, as an error message shows it. REQUIRES: a backslash stands there.
std::string_view escapeAt(std::string_view escaped, std::size_t offset);

/// Why a text cannot be cut into tokens.
struct LexicalFault {
    std::size_t offset;    // in bytes
    std::string expected;  // as in DecodeError
    std::string found;
};

/// The first such fault: a byte that is not UTF-8, a control character inside a string, a backslash outside
/// one, or a string that is not closed. Slow; call it only when indexing the text has failed.
std::optional<LexicalFault> findLexicalFault(std::string_view text);

}  // namespace oska::json
