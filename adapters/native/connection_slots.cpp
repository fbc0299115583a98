#include "adapters/native/connection_slots.h"

#include "adapters/native/http_transfer.h"

namespace oska::native {

void ConnectionSlots::enter(HttpTransfer& transfer) {
    const auto number = ++lastNumber_;
    const auto& place = places_.emplace(&transfer, Place{transfer.connectionKey(), number}).first->second;
    hosts_[place.key].waiting.emplace(number, &transfer);
    changed_.push_back(place.key);
}

HttpTransfer* ConnectionSlots::next() {
    while (!changed_.empty()) {
        const auto host = hosts_.find(changed_.front());
        changed_.pop_front();
        if (host == hosts_.end()) continue;
        auto& [active, waiting] = host->second;
        if (waiting.empty() || active == MAXIMUM) continue;
        auto* transfer = waiting.extract(waiting.begin()).mapped();
        ++active;
        places_.at(transfer).isActive = true;
        return transfer;
    }
    return nullptr;
}

void ConnectionSlots::leave(HttpTransfer& transfer) {
    const auto node = places_.extract(&transfer);
    if (!node) return;
    const auto& [key, number, isActive] = node.mapped();
    const auto found = hosts_.find(key);
    auto& host = found->second;
    if (isActive) {
        --host.active;
    } else {
        host.waiting.erase(number);
    }
    if (host.active == 0 && host.waiting.empty()) {
        hosts_.erase(found);
    } else {
        changed_.push_back(key);
    }
}

}  // namespace oska::native
