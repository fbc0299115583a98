#include "adapters/virtual/memory_transfer.h"

#include <algorithm>

#include "oska/text/text.h"

namespace oska::virtual_world {

using platform::ChallengeDisposition;
using platform::HttpError;
using platform::HttpErrorKind;
using platform::HttpOutcome;

namespace {

HttpOutcome errorOutcome(HttpErrorKind kind, std::string description) {
    return {{}, {}, HttpError{kind, std::move(description)}};
}

std::chrono::nanoseconds patience(const MemoryTransfer& transfer) {
    const auto& configuration = transfer.session->configuration;
    return std::min(transfer.request.timeout.value_or(configuration.timeoutForRequest),
                    configuration.timeoutForResource);
}

}  // namespace

HttpOutcome cancelled() { return errorOutcome(HttpErrorKind::cancelled, "cancelled"); }

bool hasScheme(const Url& url, std::string_view scheme) {
    return text::lowercased(url.scheme().value_or("")) == scheme;
}

bool isSupported(const Url& url) {
    return (hasScheme(url, "http") || hasScheme(url, "https")) && !url.host().value_or("").empty();
}

std::string pathOf(const Url& url) {
    std::string_view text = url.absoluteString();
    text = text.substr(0, text.find_first_of("?#"));
    const auto path = text.find('/', text.find("://") + 3);
    return path == std::string_view::npos ? "/" : std::string(text.substr(path));
}

bool isAccepted(const SessionInfo& session, const std::string& host) {
    return session.delegate &&
           session.delegate->didReceiveChallenge({.host = host}) == ChallengeDisposition::useCredential;
}

ScriptedAnswer withinLimits(ScriptedAnswer answer, const MemoryTransfer& transfer) {
    const auto limit = patience(transfer);
    if (!answer.outcome || answer.delay > limit) {
        return {.delay = limit, .outcome = errorOutcome(HttpErrorKind::timedOut, "The request timed out.")};
    }
    auto& outcome = *answer.outcome;
    if (outcome.body && outcome.body->size() > transfer.session->configuration.maximumReplyBytes) {
        outcome.body.reset();
        outcome.error =
            HttpError{HttpErrorKind::replyTooLarge, "The reply is larger than the session allows."};
    }
    return answer;
}

}  // namespace oska::virtual_world
