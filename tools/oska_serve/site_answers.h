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

/// What a site answers to each request; see SiteServer. Threads: any. Lifetime: that of the server it is
/// installed in.
class SiteAnswers {
public:
    /// `uploads`: null for nowhere. `scheme`: "http" or "https", for the addresses it tells.
    SiteAnswers(SiteFolder folder, std::unique_ptr<UploadFile> uploads,
                std::optional<std::string> requiredToken, std::string scheme);

    /// `reportsAnswers`: whether what is answered is reported, as what is refused is.
    void installIn(httplib::Server& server, bool reportsAnswers);

private:
    using ContentReader = httplib::ContentReader;
    using Request = httplib::Request;
    using Response = httplib::Response;

    void answerBundle(const Request& request, Response& response) const;
    void answerFile(const Request& request, Response& response) const;
    /// Before the body of an upload comes: 100 for a client that is to send it.
    [[nodiscard]] int answerExpectation(const Request& request, Response& response) const;
    void answerUpload(const Request& request, Response& response, const ContentReader& read);

    /// Puts the samples of an upload where they go; otherwise, why not.
    [[nodiscard]] std::optional<Refusal> take(const std::string& body);
    [[nodiscard]] bool admits(const Request& request) const;
    /// This server as the client sees it, "http://localhost:5050"; none when the client says it in no
    /// sensible way.
    [[nodiscard]] std::optional<std::string> originFor(const Request& request) const;

    const SiteFolder folder_;
    const std::unique_ptr<UploadFile> uploads_;
    const std::optional<std::string> requiredToken_;
    const std::string scheme_;
    std::mutex decoding_;
};

}  // namespace oska::tool
