#include "oska/url/url_syntax.h"

#include <algorithm>

#include "oska/url/url_encoding.h"

namespace oska {
namespace {

constexpr auto NONE = std::string_view::npos;

bool isScheme(std::string_view text) {
    const auto mayFollow = [](char c) {
        return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
    };
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), mayFollow);
}

// Cuts `text` off at the first `mark` and returns what comes after the mark.
std::optional<std::string_view> cutAt(char mark, std::string_view& text) {
    const auto at = text.find(mark);
    if (at == NONE) return std::nullopt;
    const auto after = text.substr(at + 1);
    text = text.substr(0, at);
    return after;
}

std::optional<std::string_view> takeScheme(std::string_view& text, EmptyScheme emptyScheme) {
    if (!startsLikeScheme(text)) return std::nullopt;
    const auto scheme = text.substr(0, text.find(':'));
    const bool counts = scheme.empty() ? emptyScheme == EmptyScheme::counts : isScheme(scheme);
    if (!counts) return std::nullopt;
    text.remove_prefix(scheme.size() + 1);
    return scheme;
}

// REQUIRES: query and fragment have been cut off `text`.
std::optional<std::string_view> takeAuthority(std::string_view& text) {
    if (!text.starts_with("//")) return std::nullopt;
    text.remove_prefix(2);
    const auto authority = text.substr(0, text.find('/'));
    text.remove_prefix(authority.size());
    return authority;
}

void takeUser(std::string_view& authority, AuthorityView& view) {
    const auto at = authority.rfind('@');
    if (at == NONE) return;
    view.user = authority.substr(0, at);
    view.password = cutAt(':', *view.user);
    authority.remove_prefix(at + 1);
}

}  // namespace

bool startsLikeScheme(std::string_view text) {
    const auto delimiter = text.find_first_of(":/?#[]@");
    return delimiter != NONE && text[delimiter] == ':';
}

UrlView splitUrl(std::string_view text, EmptyScheme emptyScheme) {
    UrlView view;
    view.scheme = takeScheme(text, emptyScheme);
    view.fragment = cutAt('#', text);
    view.query = cutAt('?', text);
    view.authority = takeAuthority(text);
    view.path = text;
    return view;
}

std::optional<AuthorityView> splitAuthority(std::string_view authority) {
    AuthorityView view;
    takeUser(authority, view);
    const auto bracket = authority.starts_with('[') ? authority.find(']') : 0;
    if (bracket == NONE) return std::nullopt;
    const auto hostEnd = std::min(authority.find(':', bracket), authority.size());
    view.host = authority.substr(0, hostEnd);
    if (bracket > 0 && hostEnd != bracket + 1) return std::nullopt;
    if (hostEnd < authority.size()) view.port = authority.substr(hostEnd + 1);
    if (view.port && !std::all_of(view.port->begin(), view.port->end(), isDigit)) return std::nullopt;
    return view;
}

}  // namespace oska
