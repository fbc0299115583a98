#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>

#include "oska/platform/quenlo_auth.h"

namespace oska {

/// The uploads that wait for a token: eight at most, so that a token provider that never answers costs no
/// more than their bodies and batches. The oldest one beyond that is answered as if the provider had failed;
/// so are all that are left in the end. Threads: any; answers are given outside the lock.
class WaitingUploads {
public:
    using Answer = std::function<void(platform::TokenResult)>;

    static constexpr std::size_t MOST = 8;

    WaitingUploads() = default;
    ~WaitingUploads();
    WaitingUploads(const WaitingUploads&) = delete;
    WaitingUploads& operator=(const WaitingUploads&) = delete;

    /// A place in the line, which ends with `leave`.
    using Ticket = std::uint64_t;
    static constexpr Ticket NO_TICKET = 0;

    /// `answer` counts its first call only, and frees what it holds then (see once.h).
    Ticket enter(Answer answer);
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
