#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "oska/json/record.h"
#include "oska/url/url.h"

namespace oska {

/// A URL as a field of a record: in documents it is its absolute string.
template <>
struct JsonText<Url> {
    static constexpr std::string_view EXPECTED = "a URL";
    static std::optional<Url> parse(std::string_view text) { return Url::parse(text); }
    static std::string_view print(const Url& url) { return url.absoluteString(); }
};

}  // namespace oska
