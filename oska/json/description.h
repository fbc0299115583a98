#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/json/record.h"

/// Descriptions: values in one line for people to read, in logs and on terminals.
///
///     Door(id: 1, label: nil, tags: ["a", "b"])
///
/// Control characters inside texts are escaped, so a value can never start a new line. The form is for
/// reading; nothing parses it. It differs from JSON in these points: a record begins with its type's name,
/// keys of records are not quoted, optional fields without a value are shown, `/` is not escaped, and
/// infinities and NaN can be shown.
///
/// Call describe() for a new string, or appendDescription() to append to one. To describe a type that is not
/// listed here, make it a record (record.h) or give it a JsonText.
///
/// Threads: any. Errors: none.
namespace oska {

/// `true` or `false`.
void appendDescription(std::string& out, bool value);

/// Decimal digits, with a minus sign when negative.
void appendDescription(std::string& out, std::int64_t value);

/// The shortest digits that read back as the same double: `1`, `0.5`, `1e+16`; also `inf`, `-inf`, `nan`.
void appendDescription(std::string& out, double value);

/// In quotes, escaped as a JSON string (see json::appendText); `/` stays.
void appendDescription(std::string& out, std::string_view value);

/// A value that documents hold as text, such as a URL: that text, in quotes.
template <TextValue Value>
void appendDescription(std::string& out, const Value& value) {
    appendDescription(out, std::string_view(JsonText<Value>::print(value)));
}

// Declared first, because each of these may contain the others.
template <class Value>
void appendDescription(std::string& out, const std::optional<Value>& value);
template <class Value>
void appendDescription(std::string& out, const std::vector<Value>& values);
template <class Value, class Order>
void appendDescription(std::string& out, const std::map<std::string, Value, Order>& values);
template <Record Value>
void appendDescription(std::string& out, const Value& record);

/// The value, or `nil` when there is no value.
template <class Value>
void appendDescription(std::string& out, const std::optional<Value>& value) {
    if (value) {
        appendDescription(out, *value);
    } else {
        out += "nil";
    }
}

/// The elements in brackets: `[1, 2]`.
template <class Value>
void appendDescription(std::string& out, const std::vector<Value>& values) {
    out += '[';
    std::string_view separator;
    for (const Value& value : values) {
        out += separator;
        appendDescription(out, value);
        separator = ", ";
    }
    out += ']';
}

/// The entries in brackets, in the map's order: `["attic": 2, "hall": 1.5]`.
template <class Value, class Order>
void appendDescription(std::string& out, const std::map<std::string, Value, Order>& values) {
    out += '[';
    std::string_view separator;
    for (const auto& [key, value] : values) {
        out += separator;
        appendDescription(out, std::string_view(key));
        out += ": ";
        appendDescription(out, value);
        separator = ", ";
    }
    out += ']';
}

/// Visitor for visitFields(): appends `name: value` for each field, with `, ` between them.
struct FieldsDescribed {
    /// Must outlive the visitor.
    std::string& out;
    /// Written before the next field; empty before the first.
    std::string_view separator;

    /// Called once for each field, in order.
    template <class Member>
    void operator()(std::string_view name, const Member& member) {
        out.append(separator).append(name).append(": ");
        appendDescription(out, member);
        separator = ", ";
    }
};

/// The record's `TYPE_NAME`, then its fields in parentheses, in the order of its `fields` function.
template <Record Value>
void appendDescription(std::string& out, const Value& record) {
    out.append(Value::TYPE_NAME).append("(");
    FieldsDescribed visit{out, {}};
    visitFields(visit, record);
    out += ')';
}

/// The description of any value that appendDescription() takes:
///
///     log("delivered " + describe(contents));
template <class Value>
std::string describe(const Value& value) {
    std::string text;
    appendDescription(text, value);
    return text;
}

}  // namespace oska
