#include "oska/url/url_join.h"

namespace oska {
namespace {

// RFC 3986, 5.2.4. REQUIRES: `path` is empty or starts with "/".
std::string withoutDotSegments(std::string_view path) {
    std::string kept;
    while (!path.empty()) {
        const auto segment = path.substr(1, path.find('/', 1) - 1);
        path.remove_prefix(1 + segment.size());
        if (segment == ".." && !kept.empty()) kept.resize(kept.rfind('/'));
        if (segment != "." && segment != "..") {
            kept.append("/").append(segment);
        } else if (path.empty()) {
            kept += '/';
        }
    }
    return kept;
}

// The path of `reference` as it is found at `base`. RFC 3986, 5.2.3.
std::string mergedPath(const UrlView& base, const UrlView& reference) {
    if (reference.authority || reference.path.starts_with('/')) return std::string(reference.path);
    const auto folder = base.path.substr(0, base.path.rfind('/') + 1);
    return std::string(folder.empty() ? "/" : folder).append(reference.path);
}

}  // namespace

std::string joinedUrl(const UrlView& base, const UrlView& reference) {
    const bool keepsPath = !reference.authority && reference.path.empty();
    const auto query = keepsPath && !reference.query ? base.query : reference.query;
    std::string text(reference.scheme.value_or(*base.scheme));
    text.append("://").append(reference.authority.value_or(*base.authority));
    text += keepsPath ? std::string(base.path) : withoutDotSegments(mergedPath(base, reference));
    if (query) text.append("?").append(*query);
    if (reference.fragment) text.append("#").append(*reference.fragment);
    return text;
}

}  // namespace oska
