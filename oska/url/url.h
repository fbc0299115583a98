#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// URLs as text. Valid text is kept unchanged; characters that are not allowed are percent-encoded; text that
/// cannot be a URL even so is refused.
///
/// When a component holds a character that is not allowed in it, the whole component is encoded: a path with
/// a space and with `%20` gets `%20` and `%2520`. Characters beyond ASCII are encoded as UTF-8. Nothing else
/// is changed: upper case, dot segments and default ports stay. Only the syntax is checked: a port may be
/// 99999, and of an address in brackets only the characters are checked.
///
/// Threads: any; all types are plain values. Cost: linear in the text. Errors: nullopt.
namespace oska {

/// One absolute URL or relative reference. Two are equal when their texts are, byte by byte.
class Url {
public:
    /// The empty URL, which only empty `UrlComponents` yield.
    Url() = default;

    /// Nullopt when `text` is empty, is not UTF-8, or has a host or a port that is not valid.
    ///
    /// A host beyond ASCII is replaced by its IDNA form (UTS 46, non-transitional; symbols such as emoji are
    /// allowed). Text before a colon that is not a valid scheme makes a relative reference
    /// (`127.0.0.1:8080`); nullopt when the first segment of that reference would have to be encoded.
    [[nodiscard]] static std::optional<Url> parse(std::string_view text);

    /// The whole text, encoded.
    [[nodiscard]] const std::string& absoluteString() const { return text_; }

    /// As written, so possibly in upper case. Nullopt without a scheme; "" when the text starts with a colon.
    [[nodiscard]] std::optional<std::string> scheme() const;

    /// The host with its escapes decoded, also the one before a zone (`fe80::1%en0`), and without the
    /// brackets of an address. `%00` is not decoded. When the decoded host would not be UTF-8, no escape is.
    /// A host beyond ASCII is returned in its IDNA form. Nullopt when there is no host or it is empty.
    [[nodiscard]] std::optional<std::string> host() const;

    /// The same with the escapes left as written.
    [[nodiscard]] std::optional<std::string> encodedHost() const;

    /// Nullopt when there is no port or it does not fit in an `int`. Default ports are not filled in.
    [[nodiscard]] std::optional<int> port() const;

    /// The URL that `reference` means when it is found in a document at this URL, such as the Location of a
    /// redirect (RFC 3986, 5.2; dot segments are removed). Nullopt when `reference` is not a URL, or when
    /// this URL has no scheme or no authority.
    [[nodiscard]] std::optional<Url> resolve(std::string_view reference) const;

    friend bool operator==(const Url&, const Url&) = default;

private:
    explicit Url(std::string text) : text_(std::move(text)) {}

    std::string text_;
};

/// One `name=value` of a query, not encoded.
struct UrlQueryItem {
    std::string name;
    /// Nullopt: only the name is written, without "=".
    std::optional<std::string> value = {};
};

/// A URL under construction: a text whose query can be replaced.
class UrlComponents {
public:
    /// Like Url::parse, with two differences: the empty text gives empty components, and a text that starts
    /// with a colon is a path.
    [[nodiscard]] static std::optional<UrlComponents> parse(std::string_view text);

    /// Replaces the whole query and keeps the fragment. Without items the query is empty, so the text ends
    /// with "?". Names and values are percent-encoded; "%" becomes "%25", and "+" stays as it is.
    void setQueryItems(const std::vector<UrlQueryItem>& items);

    /// The URL with all changes. When it has neither scheme nor authority, a colon in the first path segment
    /// is written "%3A", so that the text before it is not taken for a scheme.
    [[nodiscard]] std::optional<Url> url() const;

private:
    std::string hierarchy_;  // scheme, authority and path, encoded
    std::optional<std::string> query_;
    std::optional<std::string> fragment_;
};

}  // namespace oska
