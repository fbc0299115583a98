#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/json/json_writer.h"
#include "oska/json/record.h"

/// How each type that a document can hold is written. A record is an object of its fields in their order,
/// without those that are none. There is no white space.
namespace oska::json {

inline bool write(Writer& writer, bool value) {
    writer.text() += value ? "true" : "false";
    return true;
}

inline bool write(Writer& writer, std::int64_t value) {
    appendInteger(writer.text(), value);
    return true;
}

inline bool write(Writer& writer, double value) { return writer.writeReal(value); }

inline bool write(Writer& writer, const std::string& value) {
    writer.writeText(value);
    return true;
}

template <TextValue Value>
bool write(Writer& writer, const Value& value) {
    writer.writeText(JsonText<Value>::print(value));
    return true;
}

template <class Value>
bool write(Writer& writer, const std::optional<Value>& value);
template <class Value>
bool write(Writer& writer, const std::vector<Value>& values);
template <class Value, class Order>
bool write(Writer& writer, const std::map<std::string, Value, Order>& values);
template <Record Value>
bool write(Writer& writer, const Value& record);

/// What an optional that is no field of a record becomes.
template <class Value>
bool write(Writer& writer, const std::optional<Value>& value) {
    if (value) return write(writer, *value);
    writer.text() += "null";
    return true;
}

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

/// The members of one object, separated.
class ObjectWriter {
public:
    explicit ObjectWriter(Writer& writer) : writer_(writer) { writer_.text() += '{'; }

    template <class Value>
    bool member(std::string_view key, const Value& value) {
        if (!isFirst_) writer_.text() += ',';
        isFirst_ = false;
        writer_.writeText(key);
        writer_.text() += ':';
        return write(writer_, value) || writer_.failedIn(key);
    }

    void end() { writer_.text() += '}'; }

private:
    Writer& writer_;
    bool isFirst_ = true;
};

template <class Value, class Order>
bool write(Writer& writer, const std::map<std::string, Value, Order>& values) {
    ObjectWriter object(writer);
    for (const auto& [key, value] : values) {
        if (!object.member(key, value)) return false;
    }
    object.end();
    return true;
}

struct FieldsToObject {
    ObjectWriter& object;
    bool isWritten = true;

    template <class Member>
    void operator()(std::string_view name, const Member& member) {
        if constexpr (IS_OPTIONAL<Member>) {
            if (member) (*this)(name, *member);
        } else if (isWritten) {
            isWritten = object.member(name, member);
        }
    }
};

template <Record Value>
bool write(Writer& writer, const Value& record) {
    ObjectWriter object(writer);
    FieldsToObject visit{object};
    visitFields(visit, record);
    object.end();
    return visit.isWritten;
}

}  // namespace oska::json
