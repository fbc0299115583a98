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
/// Files are read for each request. A refusal has a status and its reason as a line of text. The header Range
/// is supported. A body may have up to 64 MiB, unpacked. A request for which memory runs out gets status 500.
/// Threads: made and destroyed on any; it has its own threads, which take no signals. It makes the process
/// ignore SIGPIPE. Lifetime: destroying it stops it, at most a second after the requests that are being
/// answered.
class SiteServer {
public:
    struct Options {
        std::string folder;
        std::string address = "127.0.0.1";  ///< a name or an address of this machine
        int port = 0;                       ///< 0: any that is free
        /// Files in PEM, both or neither; with them the server speaks TLS only.
        std::string tlsCertificate = {};
        std::string tlsKey = {};
        /// The bearer token that bundle requests and uploads must have; nullopt: none. Files need no token.
        std::optional<std::string> requiredToken = {};
        /// The file that uploaded samples are appended to, as a recording; nullopt: they are dropped. A file
        /// that the server reads is refused.
        std::optional<std::string> uploads = {};
        /// Whether answered requests are reported on standard error, one line each; refusals always are.
        bool reportsAnswers = true;
    };

    /// Starts a server; it accepts connections when this returns.
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
