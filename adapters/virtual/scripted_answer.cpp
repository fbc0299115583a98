#include "adapters/virtual/scripted_answer.h"

#include <utility>

namespace oska::virtual_world {

using platform::HttpError;
using platform::HttpErrorKind;
using platform::HttpOutcome;
using platform::HttpReply;

ScriptedAnswer ScriptedAnswer::delayedBy(std::chrono::nanoseconds span) && {
    delay += span;
    return std::move(*this);
}

ScriptedAnswer reply(int status, std::optional<std::string> body, std::vector<platform::HttpHeader> headers) {
    return {.outcome = HttpOutcome{HttpReply{status, std::move(headers)}, std::move(body), {}}};
}

ScriptedAnswer replyBeyondHttp(std::string body) {
    return {.outcome = HttpOutcome{HttpReply{}, std::move(body), {}}};
}

ScriptedAnswer refusal() { return failure(HttpErrorKind::cannotConnect, "Could not connect to the server."); }

ScriptedAnswer failure(HttpErrorKind kind, std::string description) {
    return {.outcome = HttpOutcome{{}, {}, HttpError{kind, std::move(description)}}};
}

ScriptedAnswer failureAfter(int status, HttpErrorKind kind, std::string description) {
    return {.outcome = HttpOutcome{HttpReply{status, {}}, {}, HttpError{kind, std::move(description)}}};
}

ScriptedAnswer silence() { return {}; }

ScriptedAnswer nothing() { return {.outcome = HttpOutcome{}}; }

RequestHandler always(ScriptedAnswer answer) {
    return [answer = std::move(answer)](const platform::HttpRequest&) { return answer; };
}

}  // namespace oska::virtual_world
