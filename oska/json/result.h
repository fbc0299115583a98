#pragma once

#include <cassert>
#include <cstddef>
#include <utility>
#include <variant>

namespace oska {

/// A value, or the reason why there is none. Asking for the one that is not there is a programming error
/// (asserted).
template <class Value, class Error>
class [[nodiscard]] Result {
public:
    Result(Value value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

    [[nodiscard]] bool hasValue() const { return state_.index() == 0; }
    explicit operator bool() const { return hasValue(); }

    [[nodiscard]] const Value& value() const& { return present<0>(state_); }
    [[nodiscard]] Value&& value() && { return std::move(present<0>(state_)); }
    const Value& operator*() const& { return value(); }
    Value&& operator*() && { return std::move(*this).value(); }
    const Value* operator->() const { return &value(); }

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
