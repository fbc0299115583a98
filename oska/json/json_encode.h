#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/json/json_writer.h"
#include "oska/json/record.h"

/// How each type that a document can hold is written: one `write` function for each.
///
/// Most callers want encode() of json.h. Include this header to write a value into a Writer of your own.
///
/// Each function appends the value to the writer's text, without white space. It returns false when the value
/// holds NaN or an infinity; Writer::error() then says where, and the text is incomplete. The functions find
/// each other by their argument of type Writer, so their order here does not matter.
namespace oska::json {

/// `true` or `false`.
inline bool write(Writer& writer, bool value) {
    writer.text() += value ? "true" : "false";
    return true;
}

/// All digits, also of integers that no double can hold.
inline bool write(Writer& writer, std::int64_t value) {
    appendInteger(writer.text(), value);
    return true;
}

/// The shortest digits that read back as the same double (see appendReal).
inline bool write(Writer& writer, double value) { return writer.writeReal(value); }

/// A JSON string (see appendText).
inline bool write(Writer& writer, const std::string& value) {
    writer.writeText(value);
    return true;
}

/// A value that documents hold as text: what its JsonText prints, as a JSON string.
template <TextValue Value>
bool write(Writer& writer, const Value& value) {
    writer.writeText(JsonText<Value>::print(value));
    return true;
}

/// The value, or `null`. Only for an optional inside an array or a map: as a field of a record, an optional
/// without a value is left out together with its key.
template <class Value>
bool write(Writer& writer, const std::optional<Value>& value) {
    if (value) return write(writer, *value);
    writer.text() += "null";
    return true;
}

/// An array. An error inside it names the element's index, counted from 0.
template <class Value>
bool write(Writer& writer, const std::vector<Value>& values) {
    writer.text() += '[';
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0) writer.text() += ',';
        if (!write(writer, values[i])) return writer.failedIn(i);
    }
    writer.text() += ']';
    return true;
}

/// Writes one JSON object, member by member. The constructor writes `{`; the caller must call end() last.
class ObjectWriter {
public:
    /// `writer` must outlive the object.
    explicit ObjectWriter(Writer& writer) : writer_(writer) { writer_.text() += '{'; }

    /// Writes `"key":value`, after a comma when it is not the first. Keys are not checked for repetition.
    /// Returns false when the value could not be written; the error's path then begins with `key`.
    template <class Value>
    bool member(std::string_view key, const Value& value) {
        if (!isFirst_) writer_.text() += ',';
        isFirst_ = false;
        writer_.writeText(key);
        writer_.text() += ':';
        return write(writer_, value) || writer_.failedIn(key);
    }

    /// Writes `}`.
    void end() { writer_.text() += '}'; }

private:
    Writer& writer_;
    bool isFirst_ = true;
};

/// An object with the entries in the map's order.
template <class Value, class Order>
bool write(Writer& writer, const std::map<std::string, Value, Order>& values) {
    ObjectWriter object(writer);
    for (const auto& [key, value] : values) {
        if (!object.member(key, value)) return false;
    }
    object.end();
    return true;
}

/// Visitor for visitFields(): writes each field as a member of one object.
struct FieldsToObject {
    /// Must outlive the visitor.
    ObjectWriter& object;
    /// False from the first field on that could not be written.
    bool isWritten = true;

    /// Leaves out an optional without a value. Writes nothing more after a failure.
    template <class Member>
    void operator()(std::string_view name, const Member& member) {
        if constexpr (IS_OPTIONAL<Member>) {
            if (member) (*this)(name, *member);
        } else if (isWritten) {
            isWritten = object.member(name, member);
        }
    }
};

/// A record: an object with its fields in the order of its `fields` function.
template <Record Value>
bool write(Writer& writer, const Value& record) {
    ObjectWriter object(writer);
    FieldsToObject visit{object};
    visitFields(visit, record);
    object.end();
    return visit.isWritten;
}

}  // namespace oska::json
