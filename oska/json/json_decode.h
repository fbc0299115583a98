#pragma once

#include <cassert>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "oska/json/json_reader.h"
#include "oska/json/record.h"

/// How each type that a document can hold is read; `value` is a fresh one. Of a key that comes twice in an
/// object the first counts, and the others need only be JSON; a map reads them all and keeps the first. Keys
/// that a record does not know are skipped. Keys are compared unescaped and byte by byte.
namespace oska::json {

inline bool read(Reader& reader, std::int64_t& value) { return reader.readInteger(value); }
inline bool read(Reader& reader, double& value) { return reader.readReal(value); }
inline bool read(Reader& reader, bool& value) { return reader.readBoolean(value); }
inline bool read(Reader& reader, std::string& value) { return reader.readText(value); }

template <TextValue Value>
bool read(Reader& reader, Value& value) {
    std::string text;
    if (!reader.readText(text, JsonText<Value>::EXPECTED)) return false;
    auto parsed = JsonText<Value>::parse(text);
    if (!parsed) return reader.rejectText(JsonText<Value>::EXPECTED);
    value = *std::move(parsed);
    return true;
}

template <class Value>
bool read(Reader& reader, std::optional<Value>& value);
template <class Value>
bool read(Reader& reader, std::vector<Value>& values);
template <class Value, class Order>
bool read(Reader& reader, std::map<std::string, Value, Order>& values);
template <Record Value>
bool read(Reader& reader, Value& record);

template <class Value>
bool read(Reader& reader, std::optional<Value>& value) {
    if (reader.takeNull()) return true;
    return read(reader, value.emplace());
}

/// What an array begins with, in bytes. Most arrays of a bundle are short; growing them from one element
/// costs more than the room that this leaves unused.
inline constexpr std::size_t FIRST_BLOCK = 256;

template <class Value>
bool read(Reader& reader, std::vector<Value>& values) {
    if (!reader.beginArray()) return false;
    while (reader.nextElement()) {
        if (values.capacity() == 0) values.reserve(1 + FIRST_BLOCK / sizeof(Value));
        if (!read(reader, values.emplace_back())) return reader.failedIn(values.size() - 1);
    }
    return !reader.failed();
}

template <class Value, class Order>
bool read(Reader& reader, std::map<std::string, Value, Order>& values) {
    if (!reader.beginObject()) return false;
    for (std::string_view key; reader.nextKey(key);) {
        std::string name(key);
        Value value{};
        if (!read(reader, value)) return reader.failedIn(name);
        values.try_emplace(std::move(name), std::move(value));
    }
    return !reader.failed();
}

/// Which fields of a record have been read, by their number.
class FieldSet {
public:
    [[nodiscard]] bool has(unsigned field) const { return (bits_ & bit(field)) != 0; }
    void add(unsigned field) { bits_ |= bit(field); }

private:
    static std::uint64_t bit(unsigned field) {
        assert(field < 64);
        return std::uint64_t{1} << field;
    }

    std::uint64_t bits_ = 0;
};

/// Reads the fields that come in the record's own order, as nearly all of nearly every document do: no key is
/// looked up.
struct FieldsInOrder {
    Reader& reader;
    FieldSet& seen;
    unsigned field = 0;

    template <class Member>
    void operator()(std::string_view name, Member& member) {
        const unsigned current = field++;
        if (!reader.takeKey(name)) return;
        seen.add(current);
        if (!read(reader, member)) reader.failedIn(name);
    }
};

/// Reads the value of one key into the field of that name.
struct FieldOfName {
    Reader& reader;
    FieldSet& seen;
    std::string_view key;
    unsigned field = 0;
    bool isTaken = false;

    template <class Member>
    void operator()(std::string_view name, Member& member) {
        const unsigned current = field++;
        if (isTaken || name != key || seen.has(current)) return;
        isTaken = true;
        seen.add(current);
        if (!read(reader, member)) reader.failedIn(name);
    }
};

/// Fails at the first field that is required and has not been read.
struct RequiredFields {
    Reader& reader;
    const FieldSet& seen;
    std::size_t objectOffset;
    unsigned field = 0;

    template <class Member>
    void operator()(std::string_view name, Member&) {
        const bool isMissing = !seen.has(field++) && !IS_OPTIONAL<Member>;
        if (isMissing && !reader.failed()) reader.missingKey(name, objectOffset);
    }
};

template <Record Value>
bool read(Reader& reader, Value& record) {
    const std::size_t offset = reader.offset();
    if (!reader.beginObject()) return false;
    FieldSet seen;
    FieldsInOrder inOrder{reader, seen};
    fields(inOrder, record);
    for (std::string_view key; reader.nextKey(key);) {
        FieldOfName ofName{reader, seen, key};
        fields(ofName, record);
        if (!ofName.isTaken) reader.skipMember();
    }
    RequiredFields required{reader, seen, offset};
    fields(required, record);
    return !reader.failed();
}

}  // namespace oska::json
