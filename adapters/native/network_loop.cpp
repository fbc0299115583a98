#include "adapters/native/network_loop.h"

#include <algorithm>
#include <new>
#include <utility>

namespace oska::native {

namespace {

using Outcome = std::optional<platform::HttpOutcome>;

template <class Step>
Outcome withinMemory(Step step) {
    try {
        return step();
    } catch (const std::bad_alloc&) {
        return outOfResources();
    }
}

}  // namespace

void NetworkLoop::begin(HttpTransfers transfers) {
    for (auto& transfer : transfers) {
        auto& kept = *transfer;
        transfers_.emplace(&kept, std::move(transfer));
        enter(kept);
    }
    startNext();
}

void NetworkLoop::enter(HttpTransfer& transfer) {
    if (auto refusal = withinMemory([&] { return transfer.prepare(); })) {
        end(transfer, std::move(*refusal));
    } else {
        slots_.enter(transfer);
    }
}

void NetworkLoop::startNext() {
    while (auto* transfer = slots_.next()) {
        auto failure = withinMemory([&] { return transfer->send(multi_, authorities_, connections_); });
        if (failure) end(*transfer, std::move(*failure));
    }
}

void NetworkLoop::turn(int wakeDescriptor) {
    multi_.wait(nextDeadline(), wakeDescriptor,
                [](CURL* handle) { HttpTransfer::of(handle).noteActivity(HttpTransfer::Clock::now()); });
    multi_.collectEnded([this](CURL* handle, CURLcode code) { take(HttpTransfer::of(handle), code); });
    endOverdue();
    connections_.forgetEnded();
    startNext();
}

void NetworkLoop::take(HttpTransfer& transfer, CURLcode code) {
    auto outcome = withinMemory([&] { return transfer.take(code); });
    if (outcome) return end(transfer, std::move(*outcome));
    slots_.leave(transfer);
    enter(transfer);
}

void NetworkLoop::end(HttpTransfer& transfer, platform::HttpOutcome outcome) {
    const auto node = transfers_.extract(&transfer);
    slots_.leave(transfer);
    transfer.complete(std::move(outcome));
}

void NetworkLoop::endOverdue() {
    const auto now = HttpTransfer::Clock::now();
    for (auto next = transfers_.begin(); next != transfers_.end();) {
        const auto current = next++;
        const bool isCancelled = current->second->isCancelled();
        if (!isCancelled && current->second->deadline() > now) continue;
        const auto node = transfers_.extract(current);
        slots_.leave(*node.mapped());
        isCancelled ? node.mapped()->cancel() : node.mapped()->timeOut();
    }
}

void NetworkLoop::cancelAll() {
    while (!transfers_.empty()) {
        const auto node = transfers_.extract(transfers_.begin());
        slots_.leave(*node.mapped());
        node.mapped()->cancel();
    }
}

CurlMulti::Clock::time_point NetworkLoop::nextDeadline() const {
    auto next = CurlMulti::Clock::time_point::max();
    for (const auto& [key, transfer] : transfers_) next = std::min(next, transfer->deadline());
    return next;
}

}  // namespace oska::native
