#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "oska/json/record.h"
#include "oska/url/url.h"

namespace oska {

/// Lets a Url be a field of a record (record.h). In a document it is a string, the URL's absolute string.
/// Include this header where such a record is decoded, encoded, compared or described.
///
/// Decoding parses with Url::parse: a text with characters that have to be encoded is accepted, and encoding
/// then writes it in its encoded form. Two such fields are equal when the encoded forms are.
/// Threads: any.
template <>
struct JsonText<Url> {
    /// What a decoding error says was expected: "expected a URL, found 5".
    /// The text ends up in the message of `DecodeError`.
    static constexpr std::string_view EXPECTED = "a URL";
    /// Nullopt when `text` is no URL; decoding then fails.
    static std::optional<Url> parse(std::string_view text) { return Url::parse(text); }
    /// Valid as long as `url`.
    static std::string_view print(const Url& url) { return url.absoluteString(); }
};

}  // namespace oska
