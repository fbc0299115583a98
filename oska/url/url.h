#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// URLs as text: what is valid is kept to the letter, what can be mended is percent-encoded, the rest is no
/// URL.
///
/// The whole component that holds a character not allowed in it is encoded (a path with a space and with
/// `%20` ends up with `%20` and `%2520`); characters beyond ASCII are encoded as UTF-8. Nothing is
/// case-folded, dot-reduced or otherwise normalised, and nothing is checked that only a server can know: a
/// port may be 99999, and an address in brackets is checked for its characters only.
///
/// Threads: any; all types are plain values. Cost: linear in the text. Errors: an empty optional, never a
/// guess.
namespace oska {

/// One absolute URL or relative reference. Two are equal when their texts are, byte by byte.
class Url {
public:
    /// The empty URL, which only empty `UrlComponents` yield.
    Url() = default;

    /// None when `text` is empty, is not UTF-8 or holds a host or port that cannot be. A host beyond ASCII
    /// takes its IDNA form (UTS 46, non-transitional; symbols such as emoji may stand in it). Text before a
    /// colon that is no scheme makes a relative reference (`127.0.0.1:8080`), unless that first segment would
    /// have to be encoded.
    [[nodiscard]] static std::optional<Url> parse(std::string_view text);

    [[nodiscard]] const std::string& absoluteString() const { return text_; }

    /// As written, so possibly upper case; "" when the text starts with a colon.
    [[nodiscard]] std::optional<std::string> scheme() const;

    /// Without the brackets of an address and with escapes decoded, that before a zone included
    /// (`fe80::1%en0`). `%00` stays, and so do all escapes of a host that would not be UTF-8. A host beyond
    /// ASCII reads as its IDNA form. None when it is empty or there is none.
    [[nodiscard]] std::optional<std::string> host() const;

    /// As `host`, but as written: escapes stay.
    [[nodiscard]] std::optional<std::string> encodedHost() const;

    /// None when there is none or no `int` holds it. The default port of a scheme is not filled in.
    [[nodiscard]] std::optional<int> port() const;

    /// The URL that `reference`, found at this URL, means (RFC 3986, 5.2; dot segments are removed). None
    /// when `reference` is no URL or this one has no scheme and authority.
    [[nodiscard]] std::optional<Url> resolve(std::string_view reference) const;

    friend bool operator==(const Url&, const Url&) = default;

private:
    explicit Url(std::string text) : text_(std::move(text)) {}

    std::string text_;
};

struct UrlQueryItem {
    std::string name;
    std::optional<std::string> value;  // none: the name stands alone, without "="
};

/// A URL being put together: a text whose query is replaced.
class UrlComponents {
public:
    /// As `Url::parse`, but the empty text is empty components, and a text that starts with a colon is a
    /// path.
    [[nodiscard]] static std::optional<UrlComponents> parse(std::string_view text);

    /// Replaces the whole query; the fragment stays. No items leave an empty query, so the text ends in "?".
    /// Names and values are percent-encoded from their plain form: "%" becomes "%25"; "+" stays, and is a
    /// plus.
    void setQueryItems(const std::vector<UrlQueryItem>& items);

    /// Without scheme and authority, a colon in the first path segment is written "%3A", lest it end a
    /// scheme.
    [[nodiscard]] std::optional<Url> url() const;

private:
    std::string hierarchy_;  // scheme, authority and path, encoded
    std::optional<std::string> query_;
    std::optional<std::string> fragment_;
};

}  // namespace oska
