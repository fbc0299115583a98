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

/// One request under way in a memory server. Destroyed before it has completed, it completes as cancelled.
struct MemoryTransfer {
    MemoryTransfer(std::shared_ptr<const SessionInfo> owner, platform::HttpRequest toSend,
                   platform::HttpSession::Completion completion)
        : session(std::move(owner)), request(std::move(toSend)), owed(std::move(completion), cancelled()) {}

    const std::shared_ptr<const SessionInfo> session;
    const platform::HttpRequest request;
    OwedCompletion<platform::HttpOutcome> owed;
    std::unique_ptr<platform::ScheduledWork> end;  // of a wait for the answer
};

/// `scheme` in lower case.
[[nodiscard]] bool hasScheme(const Url& url, std::string_view scheme);

/// Whether HTTP can be spoken to the URL's server at all.
[[nodiscard]] bool isSupported(const Url& url);

/// The path as written, of a URL that is supported; "/" stands for none.
[[nodiscard]] std::string pathOf(const Url& url);

/// Whether the session's delegate vouches for a host that nobody else does.
[[nodiscard]] bool isAccepted(const SessionInfo& session, const std::string& host);

/// What the client makes of the server's answer: it always has an outcome, which is a time-out when the
/// answer takes longer than the transfer may. An answer at the very instant of the time-out is in time.
[[nodiscard]] ScriptedAnswer withinLimits(ScriptedAnswer answer, const MemoryTransfer& transfer);

}  // namespace oska::virtual_world
