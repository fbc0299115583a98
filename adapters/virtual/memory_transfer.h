#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/virtual/owed_completion.h"
#include "adapters/virtual/scripted_answer.h"
#include "oska/platform/http_session.h"
#include "oska/platform/main_queue.h"

namespace oska::virtual_world {

struct SessionInfo {
    std::size_t index = 0;
    platform::HttpSessionConfiguration configuration;
    std::shared_ptr<platform::HttpSessionDelegate> delegate;
};

[[nodiscard]] platform::HttpOutcome cancelled();

/// One request under way in a memory server. If it is destroyed before it has completed, it completes as
/// cancelled. Threads: the main thread, except construction and destruction.
struct MemoryTransfer {
    MemoryTransfer(std::shared_ptr<const SessionInfo> owner, platform::HttpRequest toSend,
                   platform::HttpSession::Completion completion)
        : session(std::move(owner)), request(std::move(toSend)), owed(std::move(completion), cancelled()) {}

    const std::shared_ptr<const SessionInfo> session;
    const platform::HttpRequest request;
    OwedCompletion<platform::HttpOutcome> owed;
    std::unique_ptr<platform::ScheduledWork> end;  // completes it when the answer's delay has passed
};

/// `scheme` in lower case.
[[nodiscard]] bool hasScheme(const Url& url, std::string_view scheme);

/// Whether the URL is http or https and has a host.
[[nodiscard]] bool isSupported(const Url& url);

/// The path as written; "/" when there is none. Requires: `isSupported`.
[[nodiscard]] std::string pathOf(const Url& url);

/// Whether the session's delegate accepts the certificate of an untrusted host.
[[nodiscard]] bool isAccepted(const SessionInfo& session, const std::string& host);

/// The server's answer within the client's limits. The result always has an outcome; it is a time-out when
/// the answer takes longer than the limits allow. An answer at the very instant of the time-out is in time.
[[nodiscard]] ScriptedAnswer withinLimits(ScriptedAnswer answer, const MemoryTransfer& transfer);

}  // namespace oska::virtual_world
