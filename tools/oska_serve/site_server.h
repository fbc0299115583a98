#pragma once

#include <memory>
#include <optional>
#include <string>

#include "oska/json/result.h"

namespace oska::tool {

/// Why a server could not be started.
struct NotServing {
    std::string problem;  ///< names the file, option or address
};

/// A server for development and trials: a folder as a site, over HTTP/1.1.
///
///     GET  /v2/pelio/sectors/12/bundle   where FOLDER/12/pelio.json is served, and its digest
///     GET  /v2/dapo/sectors/12/bundle    the same of FOLDER/12/dapo.json
///     GET  /12/pelio.json                any file of the site: see SiteFolder
///     POST /v2/recordings/rfds           a JSON array of samples, which go to the file of uploads
///
/// Everything is read when it is asked for. What cannot be answered gets a status and its reason in a line of
/// text; the header Range is answered. A body is taken up to 64 MiB, unpacked. A request for which memory
/// runs out gets status 500. Threads: made and destroyed on any; it answers on threads of its own, which take
/// no signals. It makes the process ignore SIGPIPE. Lifetime: destroying it stops it, within a second of what
/// is being answered.
class SiteServer {
public:
    struct Options {
        std::string folder;
        std::string address = "127.0.0.1";  ///< a name or an address of this machine
        int port = 0;                       ///< 0: any that is free
        /// Files in PEM, both or neither; with them the server speaks TLS only.
        std::string tlsCertificate = {};
        std::string tlsKey = {};
        /// What bundle requests and uploads must bring as their bearer token; files need none.
        std::optional<std::string> requiredToken = {};
        /// Where uploaded samples go, as a recording; none: nowhere. A file that the server reads is refused.
        std::optional<std::string> uploads = {};
        /// Whether a request that was answered is a line on standard error; one that was refused always is.
        bool reportsAnswers = true;
    };

    /// A server that accepts connections already.
    [[nodiscard]] static Result<std::unique_ptr<SiteServer>, NotServing> start(const Options& options);
    ~SiteServer();
    SiteServer(const SiteServer&) = delete;
    SiteServer& operator=(const SiteServer&) = delete;

    [[nodiscard]] int port() const { return port_; }

    /// "http://127.0.0.1:5050": what a client on this machine takes as its base URL.
    [[nodiscard]] const std::string& url() const { return url_; }

private:
    class Running;

    SiteServer(std::unique_ptr<Running> running, int port, std::string url);

    const std::unique_ptr<Running> running_;
    const int port_;
    const std::string url_;
};

}  // namespace oska::tool
