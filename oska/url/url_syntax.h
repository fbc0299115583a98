#pragma once

#include <optional>
#include <string_view>

/// Splits the text of a URL into its parts by RFC 3986, appendix B. The text may hold characters that are not
/// allowed in a URL. All views are parts of the given text.
namespace oska {

/// What an empty text before a leading colon is: a scheme that counts, or a part of the path.
enum class EmptyScheme { counts, isPartOfPath };

/// The parts of a URL. Nullopt: the part and its delimiter are missing.
struct UrlView {
    std::optional<std::string_view> scheme;     // without ":"
    std::optional<std::string_view> authority;  // without "//"
    std::string_view path;
    std::optional<std::string_view> query;     // without "?"
    std::optional<std::string_view> fragment;  // without "#"

    [[nodiscard]] bool isPathOnly() const { return !scheme && !authority; }
    [[nodiscard]] std::string_view firstSegment() const { return path.substr(0, path.find('/')); }
};

/// Text before a colon that is not a valid scheme (a letter, then letters, digits and `+-.`) belongs to the
/// path.
[[nodiscard]] UrlView splitUrl(std::string_view text, EmptyScheme emptyScheme);

/// Whether the first delimiter in `text` is a colon, as it is after a scheme.
[[nodiscard]] bool startsLikeScheme(std::string_view text);

/// The parts of an authority.
struct AuthorityView {
    std::optional<std::string_view> user;
    std::optional<std::string_view> password;
    std::string_view host;                 // with the brackets of an address
    std::optional<std::string_view> port;  // digits, or empty
};

/// Nullopt when something other than a port follows the host, or a bracket is not closed.
[[nodiscard]] std::optional<AuthorityView> splitAuthority(std::string_view authority);

}  // namespace oska
