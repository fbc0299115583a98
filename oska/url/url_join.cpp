#include "oska/url/url_join.h"

#include <uriparser/Uri.h>

namespace oska {
namespace {

// uriparser's view of a text, which must outlive it.
class Uri {
public:
    Uri() = default;
    Uri(const Uri&) = delete;
    Uri& operator=(const Uri&) = delete;
    ~Uri() {
        if (holdsMembers_) uriFreeUriMembersA(&uri_);
    }

    bool parse(std::string_view text) {
        const char* end = text.data() + text.size();
        return filled(uriParseSingleUriExA(&uri_, text.data(), end, nullptr));
    }

    bool join(const Uri& base, const Uri& reference) {
        return filled(uriAddBaseUriExA(&uri_, &reference.uri_, &base.uri_, URI_RESOLVE_STRICTLY));
    }

    [[nodiscard]] std::optional<std::string> text() const {
        int length = 0;
        if (uriToStringCharsRequiredA(&uri_, &length) != URI_SUCCESS) return std::nullopt;
        std::string text(static_cast<std::size_t>(length), '\0');  // its own terminator takes the final NUL
        if (uriToStringA(text.data(), &uri_, length + 1, nullptr) != URI_SUCCESS) return std::nullopt;
        return text;
    }

private:
    bool filled(int result) { return holdsMembers_ = result == URI_SUCCESS; }

    UriUriA uri_{};
    bool holdsMembers_ = false;
};

}  // namespace

std::optional<std::string> joinedUri(std::string_view base, std::string_view reference) {
    Uri baseUri;
    Uri referenceUri;
    Uri joined;
    if (!baseUri.parse(base) || !referenceUri.parse(reference) || !joined.join(baseUri, referenceUri)) {
        return std::nullopt;
    }
    return joined.text();
}

}  // namespace oska
