#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "oska/json/record.h"
#include "oska/text/text.h"

/// Equality of records, field by field. A record type that wants `==` defines it with areEqual():
///
///     inline bool operator==(const Door& a, const Door& b) { return areEqual(a, b); }
///
/// Maps cannot be compared: no record that is compared has one. Threads: any. Cost: linear in the records,
/// and quadratic in the number of fields, which is small. Errors: none.
namespace oska {

/// Integers: the same value.
inline bool areEqual(std::int64_t a, std::int64_t b) { return a == b; }
/// Reals: as IEEE 754 compares. 0 equals -0, and NaN equals nothing, not even itself.
inline bool areEqual(double a, double b) { return a == b; }
/// Texts: canonical equivalence, however an accent was typed (see text::canonicallyEqual).
inline bool areEqual(const std::string& a, const std::string& b) { return text::canonicallyEqual(a, b); }

/// Types with a JsonText, such as URLs: by their own `==`.
template <TextValue Value>
bool areEqual(const Value& a, const Value& b) {
    return a == b;
}

// Declared first, because each of these may contain the others.
template <class Value>
bool areEqual(const std::optional<Value>& a, const std::optional<Value>& b);
template <class Value>
bool areEqual(const std::vector<Value>& a, const std::vector<Value>& b);
template <Record Value>
bool areEqual(const Value& a, const Value& b);

/// Optionals: both empty, or both with equal values.
template <class Value>
bool areEqual(const std::optional<Value>& a, const std::optional<Value>& b) {
    return a && b ? areEqual(*a, *b) : a.has_value() == b.has_value();
}

/// Arrays: of one length, with equal elements at each place.
template <class Value>
bool areEqual(const std::vector<Value>& a, const std::vector<Value>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Value& x, const Value& y) { return areEqual(x, y); });
}

/// Visitor for visitFields(): finds the field at one place of a record, whose type is known to be Member.
template <class Member>
struct FieldOfNumber {
    /// The field's place in `fields`, counted from 0.
    unsigned wanted;
    /// The place of the field visited next.
    unsigned number = 0;
    /// Set by the visit; valid as long as the record.
    const Member* found = nullptr;

    /// Called once for each field, in order. A field of another type than Member is passed over, because the
    /// branch that takes its address must compile for every type.
    template <class Other>
    void operator()(std::string_view, const Other& member) {
        const bool isWanted = number++ == wanted;
        if constexpr (std::is_same_v<Other, Member>) {
            if (isWanted) found = &member;
        }
    }
};

/// Visitor for visitFields(): compares each field of the visited record with the same field of `other`, up to
/// the first difference.
template <Record Value>
struct FieldsEqual {
    /// Must outlive the visitor.
    const Value& other;
    /// The place of the field visited next.
    unsigned number = 0;
    /// Whether all fields so far are equal.
    bool result = true;

    /// Called once for each field, in order. Does nothing after the first difference.
    template <class Member>
    void operator()(std::string_view, const Member& member) {
        FieldOfNumber<Member> counterpart{number++};
        if (!result) return;
        visitFields(counterpart, other);
        result = areEqual(member, *counterpart.found);
    }
};

/// Records: all fields are equal.
template <Record Value>
bool areEqual(const Value& a, const Value& b) {
    FieldsEqual<Value> visit{b};
    visitFields(visit, a);
    return visit.result;
}

}  // namespace oska
