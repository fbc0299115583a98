#pragma once

#include <httplib.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "tools/oska_serve/replies.h"
#include "tools/oska_serve/site_folder.h"
#include "tools/oska_serve/upload_file.h"

namespace oska::tool {

/// Address and port as they stand in a URL: "127.0.0.1:5050", "[::1]:5050".
[[nodiscard]] std::string authority(const std::string& address, int port);

/// Answers the requests for a site; see SiteServer. Threads: any. Lifetime: it must outlive the server in
/// which it is installed.
class SiteAnswers {
public:
    /// `uploads`: null if uploads are dropped. `scheme`: "http" or "https", for the addresses that it gives
    /// to clients.
    SiteAnswers(SiteFolder folder, std::unique_ptr<UploadFile> uploads,
                std::optional<std::string> requiredToken, std::string scheme);

    /// `reportsAnswers`: whether requests that were answered are reported; refusals always are.
    void installIn(httplib::Server& server, bool reportsAnswers);

private:
    using ContentReader = httplib::ContentReader;
    using Request = httplib::Request;
    using Response = httplib::Response;

    void answerBundle(const Request& request, Response& response) const;
    void answerFile(const Request& request, Response& response) const;
    /// Called before the body of an upload is sent: returns 100 for a client that may send it.
    [[nodiscard]] int answerExpectation(const Request& request, Response& response) const;
    void answerUpload(const Request& request, Response& response, const ContentReader& read);

    /// Takes the samples of an upload. Returns nullopt, or why they were refused.
    [[nodiscard]] std::optional<Refusal> take(const std::string& body);
    [[nodiscard]] bool admits(const Request& request) const;
    /// This server's address as the client sees it, "http://localhost:5050"; nullopt if the client's header
    /// Host is not valid.
    [[nodiscard]] std::optional<std::string> originFor(const Request& request) const;

    const SiteFolder folder_;
    const std::unique_ptr<UploadFile> uploads_;
    const std::optional<std::string> requiredToken_;
    const std::string scheme_;
    std::mutex decoding_;
};

}  // namespace oska::tool
