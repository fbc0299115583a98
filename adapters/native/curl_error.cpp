#include "adapters/native/curl_error.h"

#include <system_error>

namespace oska::native {

using platform::HttpError;
using platform::HttpErrorKind;

namespace {

/// The system's text if there is one, else libcurl's.
std::string because(const CurlFailure& failure) {
    if (failure.systemError != 0) return ": " + std::generic_category().message(failure.systemError) + ".";
    return ": " + (failure.detail.empty() ? curl_easy_strerror(failure.code) : failure.detail) + ".";
}

HttpError untrusted(const CurlFailure& failure) {
    return {HttpErrorKind::untrustedCertificate,
            "The certificate of " + failure.server + " is not trusted: " + failure.trustFault + "."};
}

HttpError insecure(const CurlFailure& failure) {
    return {HttpErrorKind::secureConnectionFailed,
            "No secure connection to " + failure.server + because(failure)};
}

HttpError lost(const CurlFailure& failure) {
    return {HttpErrorKind::connectionLost, "The connection to " + failure.server +
                                               " ended before the reply was complete" + because(failure)};
}

HttpError badReply(const CurlFailure& failure) {
    return {HttpErrorKind::badServerReply, failure.server + " did not answer in HTTP" + because(failure)};
}

}  // namespace

HttpError httpError(const CurlFailure& failure) {
    switch (failure.code) {
        case CURLE_COULDNT_RESOLVE_HOST:
            return {HttpErrorKind::cannotFindHost,
                    "No server is known by the name \"" + failure.host + "\"."};
        case CURLE_COULDNT_CONNECT:
            return {HttpErrorKind::cannotConnect,
                    "Could not connect to " + failure.server + because(failure)};
        case CURLE_OPERATION_TIMEDOUT:
            return {HttpErrorKind::timedOut, "Connecting to " + failure.server + " took too long."};
        case CURLE_PEER_FAILED_VERIFICATION:
            return untrusted(failure);
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CIPHER:
            return insecure(failure);
        case CURLE_UNSUPPORTED_PROTOCOL:  // for libcurl also a reply that does not begin with a status line
        case CURLE_WEIRD_SERVER_REPLY:
        case CURLE_HTTP2:
            return badReply(failure);
        case CURLE_OUT_OF_MEMORY:  // for libcurl also headers beyond its limits
            return {HttpErrorKind::badServerReply,
                    failure.server + " sent more headers than can be taken, or there is no memory for them."};
        case CURLE_GOT_NOTHING:
        case CURLE_PARTIAL_FILE:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
        case CURLE_SEND_FAIL_REWIND:  // a kept connection was dead, and the body must not be sent twice
        case CURLE_HTTP2_STREAM:
            return lost(failure);
        default:
            return {HttpErrorKind::unknown,
                    "The request to " + failure.server + " failed" + because(failure)};
    }
}

}  // namespace oska::native
