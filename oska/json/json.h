#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "oska/json/json_decode.h"
#include "oska/json/json_encode.h"
#include "oska/json/json_error.h"
#include "oska/json/record.h"
#include "oska/json/result.h"

/// JSON documents into records (see record.h) and back.
/// Threads: any. Lifetime: what is decoded keeps nothing of its text; a text needs no padding and no
/// terminator.
namespace oska::json {

/// The value that the whole of `text` stands for, or where and why it stands for none; there are no partial
/// results. Malformed JSON fails wherever it stands, also in values of keys that no record knows.
template <class Value>
Result<Value, DecodeError> decode(std::string_view text) {
    Reader reader(text);
    Value value{};
    if (read(reader, value) && reader.finish()) return value;
    return reader.takeError();
}

/// Appends `value` as JSON, in one line, as the platform's encoder does by default: `/` is written `\/`,
/// unless `slashes` (json_writer.h) says otherwise. On failure, which only NaN and infinities cause, `out` is
/// as it was.
template <class Value>
[[nodiscard]] std::optional<EncodeError> append(std::string& out, const Value& value,
                                                Slashes slashes = Slashes::escaped) {
    const std::size_t before = out.size();
    Writer writer(out, slashes);
    if (write(writer, value)) return {};
    out.resize(before);
    return writer.error();
}

template <class Value>
Result<std::string, EncodeError> encode(const Value& value, Slashes slashes = Slashes::escaped) {
    std::string text;
    if (auto error = append(text, value, slashes)) return *std::move(error);
    return text;
}

}  // namespace oska::json
