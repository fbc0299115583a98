#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

/// Percent-encoding, and the sets of characters that each component of a URL may hold without encoding.
namespace oska {

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// A set of ASCII characters: all letters, all digits and the given marks.
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

// The unreserved characters and sub-delims of RFC 3986, and what each component allows in addition.
inline constexpr UrlCharacters HOST_CHARACTERS{"!$&'()*+,-.;=_~"};
inline constexpr UrlCharacters USER_CHARACTERS = HOST_CHARACTERS;
inline constexpr UrlCharacters ADDRESS_CHARACTERS{"!$&'()*+,-.;=_~:"};
inline constexpr UrlCharacters PATH_CHARACTERS{"!$&'()*+,-.;=_~/:@"};
inline constexpr UrlCharacters QUERY_CHARACTERS{"!$&'()*+,-.;=_~/:@?"};
inline constexpr UrlCharacters QUERY_ITEM_CHARACTERS{
    "!$'()*+,-./:;?@_~"};  // without the separators "&" and "="

/// Whether every byte of `text` is in `allowed` or part of an escape (`%` and two hexadecimal digits).
[[nodiscard]] bool isEncoded(std::string_view text, const UrlCharacters& allowed);

/// `text` with each byte that is not in `allowed`, also "%", replaced by an escape with upper-case digits.
[[nodiscard]] std::string percentEncoded(std::string_view text, const UrlCharacters& allowed);

/// `text` unchanged when isEncoded(), else percentEncoded() as a whole.
[[nodiscard]] std::string encodedWhereNeeded(std::string_view text, const UrlCharacters& allowed);

/// `text` with each escape replaced by the byte that it stands for. `%00` stays.
[[nodiscard]] std::string percentDecoded(std::string_view text);

/// `host` in the form that a URL may hold: a name (its IDNA form when it is not ASCII), or an address in
/// brackets, where "%25" comes before a zone. Nullopt when it cannot be a host.
[[nodiscard]] std::optional<std::string> encodedHost(std::string_view host);

}  // namespace oska
