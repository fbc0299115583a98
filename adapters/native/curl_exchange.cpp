#include "adapters/native/curl_exchange.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "adapters/native/curl_error.h"
#include "adapters/native/request_headers.h"

namespace oska::native {

using platform::HttpError;
using platform::HttpErrorKind;
using platform::HttpOutcome;
using platform::HttpRequest;

namespace {

constexpr long RECEIVE_BUFFER_BYTES = 128L * 1024;

/// RFC 9110, 9.2.2. libcurl sends a request again when a connection kept alive turns out to be dead.
bool mayBeSentTwice(std::string_view method) {
    constexpr std::array<std::string_view, 6> METHODS{"GET", "HEAD", "PUT", "DELETE", "OPTIONS", "TRACE"};
    return std::find(METHODS.begin(), METHODS.end(), method) != METHODS.end();
}

/// Zero would mean libcurl's default.
long connectTimeout(std::chrono::milliseconds span) {
    return static_cast<long>(std::clamp<std::int64_t>(span.count(), 1, std::numeric_limits<int>::max()));
}

HttpError unsupported(const HttpRequest& request, const std::string& reason) {
    return {HttpErrorKind::unsupportedUrl,
            "Unsupported URL \"" + request.url.absoluteString() + "\": " + reason + "."};
}

/// libcurl writes an IPv6 address in brackets, and keeps its zone apart.
bool isSameHost(std::string_view curlHost, std::string_view host) {
    if (curlHost.starts_with('[') && curlHost.ends_with(']'))
        curlHost = curlHost.substr(1, curlHost.size() - 2);
    if (host.find(':') != std::string_view::npos) host = host.substr(0, host.find('%'));
    return equalsIgnoringAsciiCase(curlHost, host);
}

}  // namespace

CurlExchange::CurlExchange(const HttpRequest& request, const HttpAddress& address,
                           const ExchangeLimits& limits, ServerTrust trust, void* owner)
    : request_(request),
      address_(address),
      collector_(address.text(), limits.replyBytes),
      trust_(address.host, trust),
      hasOwnConnections_(trust.connections != nullptr) {
    setConnection(limits);
    setCallbacks(owner);
    trust_.attachTo(easy_);
}

CurlExchange::~CurlExchange() {
    if (multi_) multi_->remove(easy_.get());
}

void* CurlExchange::ownerOf(CURL* handle) {
    char* owner = nullptr;
    curl_easy_getinfo(handle, CURLINFO_PRIVATE, &owner);
    return owner;
}

std::optional<HttpError> CurlExchange::start(CurlMulti& multi) {
    if (auto fault = faultIn(request_)) {
        return HttpError{HttpErrorKind::unknown, "The request was not sent: " + *fault};
    }
    if (auto error = setUrl()) return error;
    setRequest();
    if (easy_.result() != CURLE_OK) return failure(easy_.result());
    if (multi.add(easy_.get()) != CURLM_OK) return failure(CURLE_FAILED_INIT);
    multi_ = &multi;
    return std::nullopt;
}

/// libcurl has its own rules for URLs. It must not connect to another host than the one that trust is decided
/// for.
std::optional<HttpError> CurlExchange::setUrl() {
    const auto result = url_.set(CURLUPART_URL, request_.url.absoluteString(), CURLU_PATH_AS_IS);
    if (result != CURLUE_OK) return unsupported(request_, curl_url_strerror(result));
    if (!isSameHost(url_.part(CURLUPART_HOST), request_.url.encodedHost().value_or(""))) {
        return unsupported(request_, "the host is not written as a plain name or address");
    }
    easy_.set(CURLOPT_CURLU, url_.get());
    return std::nullopt;
}

void CurlExchange::setRequest() {
    headers_ = curlHeaders(request_);
    easy_.set(CURLOPT_HTTPHEADER, headers_.get());
    const bool isPost = request_.method == "POST";
    if (request_.body || isPost) setBody();
    if (request_.method == "HEAD") {
        easy_.set(CURLOPT_NOBODY, 1L);
    } else if (!isPost) {
        easy_.set(CURLOPT_CUSTOMREQUEST, request_.method.c_str());
    }
    if (!mayBeSentTwice(request_.method)) sendOnlyOnce();
}

void CurlExchange::setBody() {
    const auto& body = request_.body;
    easy_.set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body ? body->size() : 0))
        .set(CURLOPT_POSTFIELDS, body ? body->c_str() : "");
}

/// libcurl sends a request again over a new connection when a kept connection turns out to be dead. To
/// prevent that, the request gets a connection of its own. In a pool of the session's own a kept connection
/// is used all the same, because a new one costs a question to the delegate: there the body is given through
/// a callback that works once, so that libcurl cannot send it again. Without a body that does not help.
void CurlExchange::sendOnlyOnce() {
    if (!hasOwnConnections_ || !request_.body || request_.body->empty()) {
        easy_.set(CURLOPT_FRESH_CONNECT, 1L).set(CURLOPT_FORBID_REUSE, 1L);
        return;
    }
    const curl_read_callback onRead = [](char* into, std::size_t, std::size_t size, void* self) noexcept {
        auto& exchange = *static_cast<CurlExchange*>(self);
        const auto taken = exchange.request_.body->copy(into, size, exchange.bodyBytesTaken_);
        exchange.bodyBytesTaken_ += taken;
        return taken == 0 ? std::size_t{CURL_READFUNC_ABORT} : taken;
    };
    easy_.set(CURLOPT_POSTFIELDS, nullptr)
        .set(CURLOPT_POST, 1L)
        .set(CURLOPT_READFUNCTION, onRead)
        .set(CURLOPT_READDATA, static_cast<void*>(this));
}

void CurlExchange::setConnection(const ExchangeLimits& limits) {
    easy_.set(CURLOPT_PROTOCOLS_STR, "http,https")
        .set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_2TLS})
        .set(CURLOPT_PROXY, "")  // otherwise the environment may name one
        .set(CURLOPT_CONNECTTIMEOUT_MS, connectTimeout(limits.connecting))
        .set(CURLOPT_BUFFERSIZE, RECEIVE_BUFFER_BYTES)
        .set(CURLOPT_NOSIGNAL, 1L)
        .set(CURLOPT_QUICK_EXIT, 1L);  // otherwise breaking off waits for a name server that is silent
}

void CurlExchange::setCallbacks(void* owner) {
    const curl_write_callback onHeader = [](char* line, std::size_t, std::size_t size, void* self) noexcept {
        return static_cast<CurlExchange*>(self)->collector_.addHeaderLine({line, size}) ? size : 0;
    };
    const curl_write_callback onBody = [](char* piece, std::size_t, std::size_t size, void* self) noexcept {
        return static_cast<CurlExchange*>(self)->collector_.addBody({piece, size}) ? size : 0;
    };
    easy_.set(CURLOPT_PRIVATE, owner)
        .set(CURLOPT_ERRORBUFFER, errorText_.data())
        .set(CURLOPT_HEADERFUNCTION, onHeader)
        .set(CURLOPT_HEADERDATA, static_cast<void*>(this))
        .set(CURLOPT_WRITEFUNCTION, onBody)
        .set(CURLOPT_WRITEDATA, static_cast<void*>(this));
}

bool CurlExchange::metDeadConnection(CURLcode code) const {
    if (code != CURLE_HTTP2 && code != CURLE_HTTP2_STREAM) return false;
    long newConnections = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_NUM_CONNECTS, &newConnections);
    return newConnections == 0 && !collector_.reply() && mayBeSentTwice(request_.method);
}

HttpOutcome CurlExchange::outcome(CURLcode code) {
    if (collector_.redirects()) return {.reply = collector_.reply()};
    // libcurl reports success when the connection ends inside the headers.
    if (code == CURLE_OK && !collector_.reply()) code = CURLE_GOT_NOTHING;
    if (code == CURLE_OK && collector_.finish()) {
        return {.reply = collector_.reply(), .body = collector_.takeBody()};
    }
    return brokenOff(collector_.refusal() ? *collector_.refusal() : failure(code));
}

HttpOutcome CurlExchange::brokenOff(HttpError error) const {
    if (collector_.redirects()) return {.error = std::move(error)};
    return {.reply = collector_.reply(), .error = std::move(error)};
}

HttpError CurlExchange::failure(CURLcode code) const {
    long systemError = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_OS_ERRNO, &systemError);
    return httpError({.code = code,
                      .host = address_.host,
                      .server = address_.text(),
                      .detail = errorText_.data(),
                      .systemError = static_cast<int>(systemError),
                      .trustFault = trust_.fault()});
}

}  // namespace oska::native
