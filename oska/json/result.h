#pragma once

#include <cassert>
#include <cstddef>
#include <utility>
#include <variant>

namespace oska {

/// Either a value, or an error that says why there is no value.
///
/// Check with `if (result)` or hasValue() first. Asking for the part that is not there is a programming
/// error: it stops debug builds with an assertion and is undefined in others. Nothing is thrown.
///
///     const auto bundle = json::decode<PelioBundle>(text);
///     if (!bundle) return log(bundle.error().message());
///     use(bundle->buildings);
///
/// Threads: like any plain value, one at a time unless all only read.
template <class Value, class Error>
class [[nodiscard]] Result {
public:
    /// A success. Implicit, so that a function can simply return its value.
    Result(Value value) : state_(std::in_place_index<0>, std::move(value)) {}

    /// A failure. Implicit for the same reason.
    Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

    /// Whether this is a success.
    [[nodiscard]] bool hasValue() const { return state_.index() == 0; }
    /// Whether there is a value.
    explicit operator bool() const { return hasValue(); }

    /// The value. The reference is valid as long as the result. REQUIRES: hasValue().
    [[nodiscard]] const Value& value() const& { return present<0>(state_); }

    /// The value, to be moved out of a result that is not needed any more. REQUIRES: hasValue().
    [[nodiscard]] Value&& value() && { return std::move(present<0>(state_)); }

    /// The same, shorter.
    const Value& operator*() const& { return value(); }
    /// Moves the value out. Requires: there is one.
    Value&& operator*() && { return std::move(*this).value(); }
    /// Requires: there is a value.
    const Value* operator->() const { return &value(); }

    /// The error. REQUIRES: !hasValue().
    [[nodiscard]] const Error& error() const { return present<1>(state_); }

private:
    // std::get would throw; the kit's headers must work where exceptions are off.
    template <std::size_t INDEX, class State>
    static auto& present(State& state) {
        auto* const found = std::get_if<INDEX>(&state);
        assert(found != nullptr);
        return *found;
    }

    std::variant<Value, Error> state_;
};

}  // namespace oska
