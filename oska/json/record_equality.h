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

/// Equality of records, field by field in their order: texts by canonical equivalence, reals as IEEE has it
/// (so a NaN makes a record unequal to itself), arrays element by element, types with a JsonText by their own
/// `==`.
namespace oska {

inline bool areEqual(std::int64_t a, std::int64_t b) { return a == b; }
inline bool areEqual(double a, double b) { return a == b; }
inline bool areEqual(const std::string& a, const std::string& b) { return text::canonicallyEqual(a, b); }

template <TextValue Value>
bool areEqual(const Value& a, const Value& b) {
    return a == b;
}

template <class Value>
bool areEqual(const std::optional<Value>& a, const std::optional<Value>& b);
template <class Value>
bool areEqual(const std::vector<Value>& a, const std::vector<Value>& b);
template <Record Value>
bool areEqual(const Value& a, const Value& b);

template <class Value>
bool areEqual(const std::optional<Value>& a, const std::optional<Value>& b) {
    return a && b ? areEqual(*a, *b) : a.has_value() == b.has_value();
}

template <class Value>
bool areEqual(const std::vector<Value>& a, const std::vector<Value>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Value& x, const Value& y) { return areEqual(x, y); });
}

/// Finds the field with the number `wanted`, which is a `Member`.
template <class Member>
struct FieldOfNumber {
    unsigned wanted;
    unsigned number = 0;
    const Member* found = nullptr;

    template <class Other>
    void operator()(std::string_view, const Other& member) {
        const bool isWanted = number++ == wanted;
        if constexpr (std::is_same_v<Other, Member>) {
            if (isWanted) found = &member;
        }
    }
};

template <Record Value>
struct FieldsEqual {
    const Value& other;
    unsigned number = 0;
    bool result = true;

    template <class Member>
    void operator()(std::string_view, const Member& member) {
        FieldOfNumber<Member> counterpart{number++};
        if (!result) return;
        visitFields(counterpart, other);
        result = areEqual(member, *counterpart.found);
    }
};

template <Record Value>
bool areEqual(const Value& a, const Value& b) {
    FieldsEqual<Value> visit{b};
    visitFields(visit, a);
    return visit.result;
}

}  // namespace oska
