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

/// How each type that a document can hold is read: one `read` function for each.
///
/// Most callers want decode() of json.h. Include this header to read a value from a Reader of your own.
///
/// Each function consumes one JSON value and stores it in `value`, which must be freshly default-constructed.
/// It returns false when the document holds something else; Reader::takeError() then says what and where, and
/// `value` may be partly filled. The functions find each other by their argument of type Reader, so their
/// order here does not matter.
///
/// Keys are compared after unescaping, byte by byte. Threads: one Reader is used by one thread at a time.
namespace oska::json {

/// Any spelling of an integer of 64 bits: 7, 7.0, 70e-1. Never rounded; a fraction is refused.
inline bool read(Reader& reader, std::int64_t& value) { return reader.readInteger(value); }
/// The nearest double. A number that is too large for a double is refused.
inline bool read(Reader& reader, double& value) { return reader.readReal(value); }
/// `true` or `false`, nothing else.
inline bool read(Reader& reader, bool& value) { return reader.readBoolean(value); }
/// A JSON string, unescaped. The result is always valid UTF-8.
inline bool read(Reader& reader, std::string& value) { return reader.readText(value); }

/// A JSON string that JsonText<Value>::parse accepts. An error says "expected", then JsonText's EXPECTED.
template <TextValue Value>
bool read(Reader& reader, Value& value) {
    std::string text;
    if (!reader.readText(text, JsonText<Value>::EXPECTED)) return false;
    auto parsed = JsonText<Value>::parse(text);
    if (!parsed) return reader.rejectText(JsonText<Value>::EXPECTED);
    value = *std::move(parsed);
    return true;
}

/// `null` leaves `value` empty; anything else must be a Value. A missing key is handled by the record.
template <class Value>
bool read(Reader& reader, std::optional<Value>& value) {
    if (reader.takeNull()) return true;
    return read(reader, value.emplace());
}

/// The memory that a vector reserves before its first element, in bytes. Most arrays of a bundle are short:
/// growing them from one element costs more time than the unused room costs memory.
inline constexpr std::size_t FIRST_BLOCK = 256;

/// An array whose elements are all Values. An error inside it names the element's index, counted from 0.
template <class Value>
bool read(Reader& reader, std::vector<Value>& values) {
    if (!reader.beginArray()) return false;
    while (reader.nextElement()) {
        if (values.capacity() == 0) values.reserve(1 + FIRST_BLOCK / sizeof(Value));
        if (!read(reader, values.emplace_back())) return reader.failedIn(values.size() - 1);
    }
    return !reader.failed();
}

/// An object with any keys, whose values are all Values. Of keys that are equal by the map's order the first
/// is kept; the others must be Values, too.
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

/// The set of a record's fields that have been read. A field's number is its place in the record's `fields`
/// function, counted from 0; it must be below 64.
class FieldSet {
public:
    /// Whether `field` was added.
    [[nodiscard]] bool has(unsigned field) const { return (bits_ & bit(field)) != 0; }
    /// Adds `field`; adding it again changes nothing.
    void add(unsigned field) { bits_ |= bit(field); }

private:
    static std::uint64_t bit(unsigned field) {
        assert(field < 64);
        return std::uint64_t{1} << field;
    }

    std::uint64_t bits_ = 0;
};

/// Visitor for `fields`: the first pass over an object. Reads each field whose key comes next in the
/// document. Most documents hold their keys in the record's order, so that this pass reads them all and no
/// key has to be looked up.
struct FieldsInOrder {
    /// Stands inside the object.
    Reader& reader;
    /// What has been read is added.
    FieldSet& seen;
    /// The number of the field visited next.
    unsigned field = 0;

    /// Called once for each field, in order. A field whose key does not come next is left for the second
    /// pass.
    template <class Member>
    void operator()(std::string_view name, Member& member) {
        const unsigned current = field++;
        if (!reader.takeKey(name)) return;
        seen.add(current);
        if (!read(reader, member)) reader.failedIn(name);
    }
};

/// Visitor for `fields`: the second pass, once for each key that is left. Reads the key's value into the
/// field of that name. A key that was read before is not read again: the first of equal keys counts.
struct FieldOfName {
    /// Stands before the key's value.
    Reader& reader;
    /// What has been read is added.
    FieldSet& seen;
    /// Unescaped.
    std::string_view key;
    /// The number of the field visited next.
    unsigned field = 0;
    /// Whether a field took the value; if not, the caller must skip it.
    bool isTaken = false;

    /// Called once for each field, in order. Only the field named `key` reads anything.
    template <class Member>
    void operator()(std::string_view name, Member& member) {
        const unsigned current = field++;
        if (isTaken || name != key || seen.has(current)) return;
        isTaken = true;
        seen.add(current);
        if (!read(reader, member)) reader.failedIn(name);
    }
};

/// Visitor for `fields`: the last pass. Fails at the first required field that has not been read. Every field
/// is required unless it is a std::optional.
struct RequiredFields {
    /// Gets the error.
    Reader& reader;
    /// What has been read.
    const FieldSet& seen;
    /// Where the object begins, in bytes; the error names that line.
    std::size_t objectOffset;
    /// The number of the field visited next.
    unsigned field = 0;

    /// Called once for each field, in order. Of several missing fields the first is reported.
    template <class Member>
    void operator()(std::string_view name, Member&) {
        const bool isMissing = !seen.has(field++) && !IS_OPTIONAL<Member>;
        if (isMissing && !reader.failed()) reader.missingKey(name, objectOffset);
    }
};

/// An object with all required fields of the record, in any order. Keys that the record does not know are
/// skipped; their values need only be JSON. The same goes for a key that comes again.
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
