#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

/// Records: plain structs that list their fields once, in a function `fields` beside them, in the order in
/// which a document holds them.
///
///     struct Door {
///         static constexpr std::string_view TYPE_NAME = "Door";
///         std::int64_t id = 0;
///         std::optional<std::string> label;  // may be missing or null
///     };
///     template <class Visit>
///     void fields(Visit& f, Door& door) {
///         f("id", door.id);
///         f("label", door.label);
///     }
///
/// Decoding and encoding (json.h), equality (record_equality.h) and description (description.h) are each
/// written once, over that function.
///
/// Field types: std::int64_t, double, bool, std::string, records, types with a JsonText, and std::optional,
/// std::vector and std::map<std::string, ...> of these. A record has at most 64 fields and can be
/// default-constructed. Only a description needs TYPE_NAME.
namespace oska {

/// How a type that a document holds as text, such as a URL, is parsed and printed. Specialise it for such a
/// type:
///
///     template <>
///     struct JsonText<Url> {
///         static constexpr std::string_view EXPECTED = "a URL";       // for "expected a URL, found 5"
///         static std::optional<Url> parse(std::string_view text);     // nullopt: the text is no such value
///         static std::string print(const Url& url);                   // or std::string_view
///     };
template <class Value>
struct JsonText;

/// A type with a JsonText.
template <class Value>
concept TextValue = requires(const Value& value, std::string_view text) {
    { JsonText<Value>::EXPECTED } -> std::convertible_to<std::string_view>;
    { JsonText<Value>::parse(text) } -> std::convertible_to<std::optional<Value>>;
    { JsonText<Value>::print(value) } -> std::convertible_to<std::string_view>;
};

/// Stands for any visitor in the concept below. Not to be called.
struct AnyVisitor {
    /// Accepts each field; never called.
    template <class Member>
    void operator()(std::string_view name, Member& member);
};

/// A type with a function `fields(visit, record)` that calls `visit(name, member)` for each field.
template <class Value>
concept Record = requires(AnyVisitor& visit, Value& record) {
    fields(visit, record);
};

/// Whether a field's type is a std::optional: then its key may be missing.
template <class Member>
inline constexpr bool IS_OPTIONAL = false;
template <class Value>
inline constexpr bool IS_OPTIONAL<std::optional<Value>> = true;

/// Calls `visit(name, member)` for each field of a record that must not change, in order. `visit` must take
/// the members as const references.
template <class Visit, Record Value>
void visitFields(Visit& visit, const Value& record) {
    // The cast lets a record write one `fields` function for both reading and writing.
    fields(visit, const_cast<Value&>(record));
}

}  // namespace oska
