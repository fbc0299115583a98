#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>

#include "oska/platform/quenlo_auth.h"

namespace oska {

/// The uploads that wait for a token: eight at most, so that a token provider that never answers costs no
/// more memory than those. When a ninth arrives, the oldest gets a failure; so do all that are left when this
/// is destroyed. Threads: any; answers are called outside the lock.
class WaitingUploads {
public:
    using Answer = std::function<void(platform::TokenResult)>;

    static constexpr std::size_t MOST = 8;

    WaitingUploads() = default;
    ~WaitingUploads();
    WaitingUploads(const WaitingUploads&) = delete;
    WaitingUploads& operator=(const WaitingUploads&) = delete;

    /// Identifies a waiting upload from `enter` to `leave`.
    using Ticket = std::uint64_t;
    static constexpr Ticket NO_TICKET = 0;

    /// Adds an upload. `answer` must ignore further calls and free what it holds at the first (see once.h).
    Ticket enter(Answer answer);
    /// Removes the upload without calling its answer; does nothing when it has left already.
    void leave(Ticket ticket);

private:
    struct Waiting {
        Ticket ticket;
        Answer answer;
    };

    std::mutex mutex_;
    std::list<Waiting> waiting_;  // the oldest first
    Ticket last_ = 0;
};

}  // namespace oska
