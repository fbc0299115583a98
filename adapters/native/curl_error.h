#pragma once

#include <curl/curl.h>

#include <string>

#include "oska/platform/http_session.h"

namespace oska::native {

/// What is known about a transfer that failed.
struct CurlFailure {
    CURLcode code = CURLE_OK;
    std::string host;        ///< as the URL spells it
    std::string server;      ///< "host:port"
    std::string detail;      ///< libcurl's own text, may be empty
    int systemError = 0;     ///< `errno` of the socket, 0 for none
    std::string trustFault;  ///< why the server's certificate was refused; else empty
};

/// The failure as a kind, with a sentence for people that names the server.
[[nodiscard]] platform::HttpError httpError(const CurlFailure& failure);

}  // namespace oska::native
