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

/// Who may use how many connections: six a session and host (name and port). Transfers beyond that wait, in
/// the order in which they came; transfers to other hosts pass them by.
/// Threads: one at a time. Lifetime: a transfer leaves before it is destroyed.
class ConnectionSlots {
public:
    static constexpr std::size_t MAXIMUM = 6;

    /// Gets in line. Requires: the transfer is prepared, and neither waits nor has a slot.
    void enter(HttpTransfer& transfer);

    /// The next that may go, which has a slot from now on; null when all others must wait.
    [[nodiscard]] HttpTransfer* next();

    /// Gives the slot, or the place in the line, back; nothing when the transfer has neither.
    void leave(HttpTransfer& transfer);

private:
    using Key = std::pair<const void*, std::string>;  // session, host and port
    struct Host {
        std::size_t active = 0;
        std::map<std::uint64_t, HttpTransfer*> waiting;  // in the order of coming
    };
    struct Place {
        Key key;
        std::uint64_t number = 0;
        bool isActive = false;
    };

    std::map<Key, Host> hosts_;
    std::unordered_map<HttpTransfer*, Place> places_;
    std::deque<Key> changed_;  // one entry for each that came or left: where somebody may be able to go
    std::uint64_t lastNumber_ = 0;
};

}  // namespace oska::native
