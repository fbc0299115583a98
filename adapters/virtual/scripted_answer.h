#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "oska/platform/http_session.h"

namespace oska::virtual_world {

/// What a scripted server does with one request: after `delay`, `outcome` as it stands, be it a reply, an
/// error, both, or neither; without an outcome, silence until the request times out.
struct ScriptedAnswer {
    std::chrono::nanoseconds delay{0};
    std::optional<platform::HttpOutcome> outcome;

    [[nodiscard]] ScriptedAnswer delayedBy(std::chrono::nanoseconds span) &&;
};

/// Decides on one request.
/// Threads: the main thread, in a job of its own.
using RequestHandler = std::function<ScriptedAnswer(const platform::HttpRequest&)>;

[[nodiscard]] ScriptedAnswer reply(int status, std::optional<std::string> body = "",
                                   std::vector<platform::HttpHeader> headers = {});
/// A reply that is not an HTTP reply.
[[nodiscard]] ScriptedAnswer replyBeyondHttp(std::string body);
/// The connection is refused.
[[nodiscard]] ScriptedAnswer refusal();
[[nodiscard]] ScriptedAnswer failure(platform::HttpErrorKind kind, std::string description);
/// An error after the headers of an HTTP reply had come.
[[nodiscard]] ScriptedAnswer failureAfter(int status, platform::HttpErrorKind kind, std::string description);
[[nodiscard]] ScriptedAnswer silence();
/// The request ends with no reply and no error.
[[nodiscard]] ScriptedAnswer nothing();

/// Answers every request alike.
[[nodiscard]] RequestHandler always(ScriptedAnswer answer);

}  // namespace oska::virtual_world
