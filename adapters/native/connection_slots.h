#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

namespace oska::native {

class HttpTransfer;

/// Limits the requests under way to six for each session and host (name and port). More transfers wait, in
/// the order in which they came; transfers to other hosts do not wait for them.
/// Threads: one at a time. Lifetime: a transfer must leave before it is destroyed.
class ConnectionSlots {
public:
    static constexpr std::size_t MAXIMUM = 6;

    /// Adds the transfer to those that wait. Requires: it is prepared, does not wait and has no slot.
    void enter(HttpTransfer& transfer);

    /// Gives a slot to the next transfer that may have one, and returns it; null when all must wait.
    [[nodiscard]] HttpTransfer* next();

    /// Gives up the slot, or stops to wait. Does nothing when the transfer has no slot and does not wait.
    void leave(HttpTransfer& transfer);

private:
    using Key = std::pair<const void*, std::string>;  // session, host and port
    struct Host {
        std::size_t active = 0;
        std::map<std::uint64_t, HttpTransfer*> waiting;  // by number: in the order in which they came
    };
    struct Place {
        Key key;
        std::uint64_t number = 0;
        bool isActive = false;
    };

    std::map<Key, Host> hosts_;
    std::unordered_map<HttpTransfer*, Place> places_;
    std::deque<Key> changed_;  // hosts where a transfer came or left, so that one may be able to start
    std::uint64_t lastNumber_ = 0;
};

}  // namespace oska::native
