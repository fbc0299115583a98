#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

/// What a record is: a plain struct that names its fields once, in the order of its document, by a function
/// beside it.
///
///     struct Door {
///         static constexpr std::string_view TYPE_NAME = "Door";
///         std::int64_t id = 0;
///         std::optional<std::string> label;  // not required: absent and null mean none
///     };
///     template <class Visit>
///     void fields(Visit& f, Door& door) {
///         f("id", door.id);
///         f("label", door.label);
///     }
///
/// Decoding, encoding (json.h) and textual description (description.h) are each written once over that
/// function. Field types: std::int64_t, double, bool, std::string, records, types with a JsonText, and
/// std::optional, std::vector and std::map<std::string, ...> of these. A record has at most 64 fields and can
/// be default-constructed.
namespace oska {

/// For a value that a document holds as text, such as a URL. To be specialised:
///
///     template <>
///     struct JsonText<Url> {
///         static constexpr std::string_view EXPECTED = "a URL";       // for "expected a URL, found 5"
///         static std::optional<Url> parse(std::string_view text);     // none: the text is no such value
///         static std::string print(const Url& url);                   // or std::string_view
///     };
template <class Value>
struct JsonText;

template <class Value>
concept TextValue = requires(const Value& value, std::string_view text) {
    { JsonText<Value>::EXPECTED } -> std::convertible_to<std::string_view>;
    { JsonText<Value>::parse(text) } -> std::convertible_to<std::optional<Value>>;
    { JsonText<Value>::print(value) } -> std::convertible_to<std::string_view>;
};

struct AnyVisitor {
    template <class Member>
    void operator()(std::string_view name, Member& member);
};

template <class Value>
concept Record = requires(AnyVisitor& visit, Value& record) {
    fields(visit, record);
};

template <class Member>
inline constexpr bool IS_OPTIONAL = false;
template <class Value>
inline constexpr bool IS_OPTIONAL<std::optional<Value>> = true;

/// Visits a record that must not change: `visit` takes the members as const references.
template <class Visit, Record Value>
void visitFields(Visit& visit, const Value& record) {
    // So that a record writes its list of fields once, for reading and for writing.
    fields(visit, const_cast<Value&>(record));
}

}  // namespace oska
