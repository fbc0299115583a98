#include "adapters/native/http_transfer.h"

#include <algorithm>
#include <new>
#include <utility>

#include "adapters/native/http_redirect.h"
#include "oska/text/text.h"

namespace oska::native {

using platform::HttpError;
using platform::HttpErrorKind;
using platform::HttpOutcome;
using platform::HttpReply;
using platform::HttpRequest;

namespace {

HttpOutcome failed(HttpErrorKind kind, std::string description) {
    return {.error = HttpError{kind, std::move(description)}};
}

std::chrono::milliseconds idleTimeout(const HttpRequest& request, const SessionState& session) {
    return request.timeout.value_or(session.configuration.timeoutForRequest);
}

ExchangeLimits limitsOf(const HttpRequest& request, const SessionState& session) {
    const auto& configuration = session.configuration;
    return {.connecting = std::min(idleTimeout(request, session), configuration.timeoutForResource),
            .replyBytes = configuration.maximumReplyBytes};
}

}  // namespace

HttpOutcome outOfResources() {
    return {.error =
                HttpError{HttpErrorKind::outOfResources, "out of memory"}};  // short enough to need no memory
}

HttpTransfer::HttpTransfer(std::shared_ptr<const SessionState> session, HttpRequest request,
                           platform::HttpSession::Completion completion)
    : session_(std::move(session)),
      request_(std::move(request)),
      completion_(std::move(completion)),
      deadlines_(idleTimeout(request_, *session_), session_->configuration.timeoutForResource, Clock::now()) {
}

HttpTransfer::~HttpTransfer() {
    if (!completion_) return;
    try {
        complete(outOfResources());
    } catch (const std::bad_alloc&) {  // thrown by the completion, so it was called
    }
}

std::optional<HttpOutcome> HttpTransfer::prepare() {
    address_ = HttpAddress::of(request_.url);
    if (!address_) {
        return failed(HttpErrorKind::unsupportedUrl, "Unsupported URL \"" + request_.url.absoluteString() +
                                                         "\": http or https and a host are needed.");
    }
    if (platform::isGetWithBody(request_)) {
        return failed(HttpErrorKind::bodyNotAllowed,
                      "The request to " + address_->text() + " was not sent: a GET cannot have a body.");
    }
    return std::nullopt;
}

std::pair<const void*, std::string> HttpTransfer::connectionKey() const {
    return {session_.get(), text::lowercased(address_->text())};
}

std::optional<HttpOutcome> HttpTransfer::send(CurlMulti& multi, TrustStore& authorities,
                                              PrivateConnections& connections) {
    exchange_ = std::make_unique<CurlExchange>(
        request_, *address_, limitsOf(request_, *session_),
        ServerTrust{session_->delegate.get(), authorities, connections.poolFor(session_, *address_)}, this);
    if (auto error = exchange_->start(multi)) return HttpOutcome{.error = std::move(*error)};
    return std::nullopt;
}

std::optional<HttpOutcome> HttpTransfer::take(CURLcode code) {
    if (!hasBeenRepeated_ && exchange_->metDeadConnection(code)) {
        hasBeenRepeated_ = true;
        return std::nullopt;
    }
    auto outcome = exchange_->outcome(code);
    exchange_.reset();
    const bool leadsOn = !outcome.error && isRedirect(*outcome.reply);
    return leadsOn ? follow(*outcome.reply) : std::move(outcome);
}

std::optional<HttpOutcome> HttpTransfer::follow(const HttpReply& redirect) {
    if (++redirects_ > MAXIMUM_REDIRECTS) {
        return failed(HttpErrorKind::tooManyRedirects, "More than " + std::to_string(MAXIMUM_REDIRECTS) +
                                                           " redirects, the last of them at " +
                                                           request_.url.absoluteString() + ".");
    }
    auto next = redirected(std::move(request_), redirect);
    if (auto* error = std::get_if<HttpError>(&next)) return HttpOutcome{.error = std::move(*error)};
    request_ = std::move(std::get<HttpRequest>(next));
    noteActivity(Clock::now());
    return std::nullopt;
}

void HttpTransfer::complete(HttpOutcome outcome) {
    exchange_.reset();
    const auto completion = std::exchange(completion_, nullptr);
    if (completion) completion(std::move(outcome));
}

void HttpTransfer::timeOut() {
    const auto address = HttpAddress::of(request_.url);
    breakOff({HttpErrorKind::timedOut, deadlines_.describe(address ? address->text() : "The server")});
}

void HttpTransfer::cancel() {
    breakOff({HttpErrorKind::cancelled, "The request was cancelled: its session has ended."});
}

void HttpTransfer::breakOff(HttpError error) {
    complete(exchange_ ? exchange_->brokenOff(std::move(error)) : HttpOutcome{.error = std::move(error)});
}

}  // namespace oska::native
