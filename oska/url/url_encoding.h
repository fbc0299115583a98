#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

/// Percent-encoding, and the sets of bytes that stand as they are in each component of a URL.
namespace oska {

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// A set of ASCII characters: letters, digits and those given.
class UrlCharacters {
public:
    explicit constexpr UrlCharacters(std::string_view marks) {
        for (std::size_t c = 0; c < allowed_.size(); ++c) {
            const char character = static_cast<char>(c);
            allowed_[c] = isLetter(character) || isDigit(character) || marks.find(character) != marks.npos;
        }
    }
    [[nodiscard]] constexpr bool contains(char c) const {
        const auto byte = static_cast<unsigned char>(c);
        return byte < allowed_.size() && allowed_[byte];
    }

private:
    std::array<bool, 128> allowed_{};
};

// unreserved and sub-delims of RFC 3986, and what each component allows beside them.
inline constexpr UrlCharacters HOST_CHARACTERS{"!$&'()*+,-.;=_~"};
inline constexpr UrlCharacters USER_CHARACTERS = HOST_CHARACTERS;
inline constexpr UrlCharacters ADDRESS_CHARACTERS{"!$&'()*+,-.;=_~:"};
inline constexpr UrlCharacters PATH_CHARACTERS{"!$&'()*+,-.;=_~/:@"};
inline constexpr UrlCharacters QUERY_CHARACTERS{"!$&'()*+,-.;=_~/:@?"};
inline constexpr UrlCharacters QUERY_ITEM_CHARACTERS{
    "!$'()*+,-./:;?@_~"};  // without the separators "&" and "="

/// Whether every byte of `text` is allowed or part of an escape (`%` and two hexadecimal digits).
[[nodiscard]] bool isEncoded(std::string_view text, const UrlCharacters& allowed);

/// Every byte that is not allowed, "%" among them, as an escape with upper-case digits.
[[nodiscard]] std::string percentEncoded(std::string_view text, const UrlCharacters& allowed);

/// `text` as it is when it `isEncoded`, else the whole of it percent-encoded.
[[nodiscard]] std::string encodedWhereNeeded(std::string_view text, const UrlCharacters& allowed);

/// `text` with its escapes as the bytes that they stand for, but `%00` as it is.
[[nodiscard]] std::string percentDecoded(std::string_view text);

/// A host as it may stand in a URL: a name, its IDNA form when it is not ASCII, or an address in brackets,
/// whose zone is then introduced by "%25". None when it cannot be a host.
[[nodiscard]] std::optional<std::string> encodedHost(std::string_view host);

}  // namespace oska
