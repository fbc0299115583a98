#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/native/content_decoder.h"
#include "oska/platform/http_session.h"

namespace oska::native {

/// Puts one reply together from the header lines and the pieces of body that libcurl hands over.
///
/// Bounds: the decoded body by `maximumBytes`, the headers by 256 KiB, both by the memory there is. What is
/// refused is refused for good; `refusal` tells why. The body of a redirect is read past and neither kept nor
/// judged. Threads: one at a time.
class ReplyCollector {
public:
    ReplyCollector(std::string server, std::size_t maximumBytes)
        : server_(std::move(server)), maximumBytes_(maximumBytes) {}

    /// With its line end. Interim replies (1xx) and what follows the body are passed over. False: refused.
    [[nodiscard]] bool addHeaderLine(std::string_view line);

    /// False: refused.
    [[nodiscard]] bool addBody(std::string_view piece);

    /// To be called when the transfer ended well: a compressed body may still be cut off. False: refused.
    [[nodiscard]] bool finish();

    /// The reply whose headers are complete.
    [[nodiscard]] const std::optional<platform::HttpReply>& reply() const { return reply_; }
    [[nodiscard]] bool redirects() const { return redirects_; }
    [[nodiscard]] const std::optional<platform::HttpError>& refusal() const { return refusal_; }
    [[nodiscard]] std::string takeBody() { return std::move(body_); }

private:
    [[nodiscard]] bool collectHeaderLine(std::string_view line);
    [[nodiscard]] bool collectBody(std::string_view piece);
    void beginHeaders(std::string_view statusLine);
    void addHeader(std::string_view line);
    void endHeaders();
    [[nodiscard]] bool beginBody();
    [[nodiscard]] bool keep(std::string_view plain);
    bool refuse(platform::HttpErrorKind kind, std::string description);
    /// What `step` answers; refused when there is no memory for it.
    template <class Step>
    [[nodiscard]] bool withinMemory(Step step);

    const std::string server_;  // "host:port", for error texts
    const std::size_t maximumBytes_;
    std::size_t headerBytes_ = 0;
    std::optional<platform::HttpReply> unfinished_;  // headers that are still coming
    std::optional<platform::HttpReply> reply_;
    bool redirects_ = false;
    bool hasBody_ = false;
    std::unique_ptr<ContentDecoder> decoder_;
    std::string body_;
    std::optional<platform::HttpError> refusal_;
};

}  // namespace oska::native
