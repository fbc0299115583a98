#include "oska/url/url.h"

#include <algorithm>
#include <charconv>

#include "oska/text/text.h"
#include "oska/url/url_encoding.h"
#include "oska/url/url_join.h"
#include "oska/url/url_syntax.h"

namespace oska {
namespace {

std::optional<std::string> encodedAuthority(std::string_view authority) {
    const auto view = splitAuthority(authority);
    if (!view) return std::nullopt;
    const auto host = encodedHost(view->host);
    if (!host) return std::nullopt;
    std::string encoded;
    if (view->user) encoded += encodedWhereNeeded(*view->user, USER_CHARACTERS);
    if (view->password) encoded += ":" + encodedWhereNeeded(*view->password, USER_CHARACTERS);
    if (view->user) encoded += "@";
    encoded += *host;
    if (view->port) encoded.append(":").append(*view->port);
    return encoded;
}

// Scheme, authority and path, encoded.
std::optional<std::string> encodedHierarchy(const UrlView& view) {
    const auto first = view.firstSegment();
    const bool badScheme = view.isPathOnly() && startsLikeScheme(first) && !first.starts_with(':');
    if (badScheme && !isEncoded(first, PATH_CHARACTERS)) return std::nullopt;
    std::string encoded;
    if (view.scheme) encoded.append(*view.scheme).append(":");
    if (view.authority) {
        const auto authority = encodedAuthority(*view.authority);
        if (!authority) return std::nullopt;
        encoded.append("//").append(*authority);
    }
    return encoded + encodedWhereNeeded(view.path, PATH_CHARACTERS);
}

// A query or a fragment, encoded.
std::optional<std::string> encodedPart(std::optional<std::string_view> part) {
    if (!part) return std::nullopt;
    return encodedWhereNeeded(*part, QUERY_CHARACTERS);
}

std::string joinedText(std::string text, const std::optional<std::string>& query,
                       const std::optional<std::string>& fragment) {
    if (query) text.append("?").append(*query);
    if (fragment) text.append("#").append(*fragment);
    return text;
}

// The path with the colons of its first segment encoded, so that the segment is not taken for a scheme.
std::string withoutLeadingScheme(std::string_view path) {
    if (path.starts_with(':')) return std::string(path);
    const auto firstEnd = std::min(path.find('/'), path.size());
    std::string text;
    for (const char c : path.substr(0, firstEnd)) {
        if (c == ':') {
            text += "%3A";
        } else {
            text += c;
        }
    }
    return text.append(path.substr(firstEnd));
}

}  // namespace

std::optional<Url> Url::parse(std::string_view text) {
    if (text.empty() || !text::isUtf8(text)) return std::nullopt;
    const auto view = splitUrl(text, EmptyScheme::counts);
    auto hierarchy = encodedHierarchy(view);
    if (!hierarchy) return std::nullopt;
    return Url(joinedText(std::move(*hierarchy), encodedPart(view.query), encodedPart(view.fragment)));
}

std::optional<std::string> Url::scheme() const {
    const auto view = splitUrl(text_, EmptyScheme::counts);
    if (!view.scheme) return std::nullopt;
    return std::string(*view.scheme);
}

std::optional<std::string> Url::host() const {
    const auto written = encodedHost();
    if (!written) return std::nullopt;
    auto host = percentDecoded(*written);
    return text::isUtf8(host) ? std::move(host) : written;
}

std::optional<std::string> Url::encodedHost() const {
    const auto authority = splitAuthority(splitUrl(text_, EmptyScheme::counts).authority.value_or(""));
    if (!authority || authority->host.empty()) return std::nullopt;
    const bool bracketed = authority->host.front() == '[';
    return std::string(bracketed ? authority->host.substr(1, authority->host.size() - 2) : authority->host);
}

std::optional<int> Url::port() const {
    const auto authority = splitAuthority(splitUrl(text_, EmptyScheme::counts).authority.value_or(""));
    if (!authority || !authority->port) return std::nullopt;
    int number = 0;
    const char* end = authority->port->data() + authority->port->size();
    if (std::from_chars(authority->port->data(), end, number).ec != std::errc()) return std::nullopt;
    return number;
}

std::optional<Url> Url::resolve(std::string_view reference) const {
    auto target = reference.empty() ? Url() : parse(reference);
    const auto base = splitUrl(text_, EmptyScheme::counts);
    if (!target || !base.scheme || !base.authority) return std::nullopt;
    const auto own = splitUrl(target->text_, EmptyScheme::counts);
    if (own.scheme && !own.authority) return target;
    // RFC 3986, 4.2: a relative reference has no colon in its first segment.
    if (own.isPathOnly() && own.firstSegment().find(':') != std::string_view::npos) return std::nullopt;
    return Url(joinedUrl(base, own));
}

std::optional<UrlComponents> UrlComponents::parse(std::string_view text) {
    if (!text::isUtf8(text)) return std::nullopt;
    const auto view = splitUrl(text, EmptyScheme::isPartOfPath);
    auto hierarchy = encodedHierarchy(view);
    if (!hierarchy) return std::nullopt;
    UrlComponents components;
    components.hierarchy_ = view.isPathOnly() ? withoutLeadingScheme(*hierarchy) : std::move(*hierarchy);
    components.query_ = encodedPart(view.query);
    components.fragment_ = encodedPart(view.fragment);
    return components;
}

void UrlComponents::setQueryItems(const std::vector<UrlQueryItem>& items) {
    query_ = "";
    for (const auto& [name, value] : items) {
        if (&name != &items.front().name) *query_ += '&';
        *query_ += percentEncoded(name, QUERY_ITEM_CHARACTERS);
        if (value) query_->append("=").append(percentEncoded(*value, QUERY_ITEM_CHARACTERS));
    }
}

std::optional<Url> UrlComponents::url() const {
    const std::string text = joinedText(hierarchy_, query_, fragment_);
    if (text.empty()) return Url();
    return Url::parse(text);
}

}  // namespace oska
