#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/json/record.h"

/// Records in one line for people: `Door(id: 1, label: nil, tags: ["a", "b"])`. Texts are quoted and escaped
/// as in JSON, so that no value can start a line of its own.
namespace oska {

void appendDescription(std::string& out, bool value);
void appendDescription(std::string& out, std::int64_t value);
void appendDescription(std::string& out, double value);
void appendDescription(std::string& out, std::string_view value);

template <TextValue Value>
void appendDescription(std::string& out, const Value& value) {
    appendDescription(out, std::string_view(JsonText<Value>::print(value)));
}

template <class Value>
void appendDescription(std::string& out, const std::optional<Value>& value);
template <class Value>
void appendDescription(std::string& out, const std::vector<Value>& values);
template <class Value, class Order>
void appendDescription(std::string& out, const std::map<std::string, Value, Order>& values);
template <Record Value>
void appendDescription(std::string& out, const Value& record);

template <class Value>
void appendDescription(std::string& out, const std::optional<Value>& value) {
    if (value) {
        appendDescription(out, *value);
    } else {
        out += "nil";
    }
}

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

struct FieldsDescribed {
    std::string& out;
    std::string_view separator;

    template <class Member>
    void operator()(std::string_view name, const Member& member) {
        out.append(separator).append(name).append(": ");
        appendDescription(out, member);
        separator = ", ";
    }
};

template <Record Value>
void appendDescription(std::string& out, const Value& record) {
    out.append(Value::TYPE_NAME).append("(");
    FieldsDescribed visit{out, {}};
    visitFields(visit, record);
    out += ')';
}

template <class Value>
std::string describe(const Value& value) {
    std::string text;
    appendDescription(text, value);
    return text;
}

}  // namespace oska
