#pragma once

#include <optional>
#include <string_view>

/// The parts of a URL's text by RFC 3986, appendix B, for text that may still hold characters not allowed in
/// it. All views lie in the text given.
namespace oska {

enum class EmptyScheme { counts, isPartOfPath };

struct UrlView {
    std::optional<std::string_view> scheme;     // without ":"
    std::optional<std::string_view> authority;  // without "//"
    std::string_view path;
    std::optional<std::string_view> query;     // without "?"
    std::optional<std::string_view> fragment;  // without "#"

    [[nodiscard]] bool isPathOnly() const { return !scheme && !authority; }
    [[nodiscard]] std::string_view firstSegment() const { return path.substr(0, path.find('/')); }
};

/// Text before a colon that is no scheme (a letter, then letters, digits and `+-.`) belongs to the path.
[[nodiscard]] UrlView splitUrl(std::string_view text, EmptyScheme emptyScheme);

/// Whether `text` has a colon before any other delimiter, as if a scheme came first.
[[nodiscard]] bool startsLikeScheme(std::string_view text);

struct AuthorityView {
    std::optional<std::string_view> user;
    std::optional<std::string_view> password;
    std::string_view host;                 // with the brackets of an address
    std::optional<std::string_view> port;  // digits, possibly none
};

/// None when something other than a port follows the host, or a bracket is not closed.
[[nodiscard]] std::optional<AuthorityView> splitAuthority(std::string_view authority);

}  // namespace oska
