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

/// JSON documents into values and back. This is the header that most callers include.
///
/// A value is a record (record.h) or any type that a record's field may have:
///
///     const auto door = json::decode<Door>(R"({"id": 7, "label": "north"})");
///     if (!door) log(door.error().message());
///     const auto text = json::encode(*door);
///
/// Threads: any. Lifetime: a decoded value refers to nothing in its text; a text needs neither padding nor a
/// terminator. Errors: returned, never thrown, except that std::bad_alloc may pass.
namespace oska::json {

/// Decodes the whole of `text`, which must be UTF-8.
///
/// White space around the value is skipped.
///
/// Returns the value, or an error that says where and why decoding failed. There are no partial results.
/// JSON that is malformed anywhere makes decoding fail, also inside the value of a key that no record knows.
/// `Value` must be default-constructible.
template <class Value>
Result<Value, DecodeError> decode(std::string_view text) {
    Reader reader(text);
    Value value{};
    if (read(reader, value) && reader.finish()) return value;
    return reader.takeError();
}

/// Appends `value` to `out` as JSON, in one line without white space.
///
/// By default `/` is written `\/`, as the platform's encoder does; `slashes` can change that (json_writer.h).
/// Returns nullopt on success. Fails only when the value holds NaN or an infinity; then `out` is as it was
/// before.
template <class Value>
[[nodiscard]] std::optional<EncodeError> append(std::string& out, const Value& value,
                                                Slashes slashes = Slashes::escaped) {
    const std::size_t before = out.size();
    Writer writer(out, slashes);
    if (write(writer, value)) return {};
    out.resize(before);
    return writer.error();
}

/// Returns what `append` appends, or its error. Like `append`, it writes one line, with the fields of a
/// record in their order.
template <class Value>
Result<std::string, EncodeError> encode(const Value& value, Slashes slashes = Slashes::escaped) {
    std::string text;
    if (auto error = append(text, value, slashes)) return *std::move(error);
    return text;
}

}  // namespace oska::json
