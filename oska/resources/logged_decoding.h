#pragma once

#include <optional>
#include <string_view>
#include <utility>

#include "oska/json/json.h"
#include "oska/resources/resource_log.h"
#include "oska/text/text.h"

namespace oska {

/// The record that the document holds, or none, which is logged with the place and the reason.
template <class Record>
std::optional<Record> decodeJSONData(std::string_view data) {
    auto decoded = json::decode<Record>(data);
    if (decoded) return *std::move(decoded);
    RESOURCE_LOG.error("decodeJSONData", decoded.error().message());
    return std::nullopt;
}

/// Likewise for a text, which must be UTF-8 throughout.
template <class Record>
std::optional<Record> decodeJSONString(std::string_view text) {
    if (text::isUtf8(text)) return decodeJSONData<Record>(text);
    RESOURCE_LOG.error("decodeJSONString", "failed to encode string to utf8 data");
    return std::nullopt;
}

}  // namespace oska
