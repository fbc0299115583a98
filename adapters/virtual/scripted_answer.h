#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "oska/platform/http_session.h"

namespace oska::virtual_world {

/// What a scripted server does with one request. A plain value; the functions below make the usual ones.
///
///     server.onPath("/bundle", always(reply(200, document).delayedBy(20ms)));
struct ScriptedAnswer {
    /// Virtual time from the arrival of the request to its completion; zero: at the same instant.
    std::chrono::nanoseconds delay{0};
    /// What the client gets, unchanged: a reply, an error, both, or neither. Nullopt: nothing comes, until
    /// the request times out.
    std::optional<platform::HttpOutcome> outcome = {};

    /// The same answer, later by `span`.
    [[nodiscard]] ScriptedAnswer delayedBy(std::chrono::nanoseconds span) &&;
};

/// Decides on the answer to one request.
/// Threads: called on the main thread, in a job of its own.
using RequestHandler = std::function<ScriptedAnswer(const platform::HttpRequest&)>;

/// An HTTP reply with this status. `body` nullopt: the outcome has no body, not even an empty one.
[[nodiscard]] ScriptedAnswer reply(int status, std::optional<std::string> body = "",
                                   std::vector<platform::HttpHeader> headers = {});

/// A reply without a status, as from a protocol other than HTTP.
[[nodiscard]] ScriptedAnswer replyBeyondHttp(std::string body);

/// The connection is refused: `cannotConnect`.
[[nodiscard]] ScriptedAnswer refusal();

/// An error, without a reply. `description` is the text of the error.
[[nodiscard]] ScriptedAnswer failure(platform::HttpErrorKind kind, std::string description);

/// An error after the headers of an HTTP reply with this status had come.
[[nodiscard]] ScriptedAnswer failureAfter(int status, platform::HttpErrorKind kind, std::string description);

/// No answer: the request times out.
[[nodiscard]] ScriptedAnswer silence();

/// The request completes with no reply and no error.
[[nodiscard]] ScriptedAnswer nothing();

/// A handler that gives every request the same answer.
[[nodiscard]] RequestHandler always(ScriptedAnswer answer);

}  // namespace oska::virtual_world
