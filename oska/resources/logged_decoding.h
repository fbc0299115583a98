#pragma once

#include <optional>
#include <string_view>
#include <utility>

#include "oska/json/json.h"
#include "oska/resources/resource_log.h"
#include "oska/text/text.h"

namespace oska {

/// The record that the document holds. A document that does not decode gives nullopt, and the place and the
/// reason are logged.
template <class Record>
std::optional<Record> decodeJSONData(std::string_view data) {
    auto decoded = json::decode<Record>(data);
    if (decoded) return *std::move(decoded);
    RESOURCE_LOG.error("decodeJSONData", decoded.error().message());
    return std::nullopt;
}

/// The same for a text; one that is not UTF-8 gives nullopt and is logged.
template <class Record>
std::optional<Record> decodeJSONString(std::string_view text) {
    if (text::isUtf8(text)) return decodeJSONData<Record>(text);
    RESOURCE_LOG.error("decodeJSONString", "failed to encode string to utf8 data");
    return std::nullopt;
}

}  // namespace oska
