#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/native/content_decoder.h"
#include "oska/platform/http_session.h"

namespace oska::native {

/// Collects one reply from the header lines and the pieces of the body that libcurl hands over.
///
/// Limits: `maximumBytes` for the decoded body, 256 KiB for the headers, and the free memory for both. Once
/// a reply was refused, it stays refused; `refusal` says why. The body of a redirect is neither kept nor
/// checked. Threads: one at a time.
class ReplyCollector {
public:
    ReplyCollector(std::string server, std::size_t maximumBytes)
        : server_(std::move(server)), maximumBytes_(maximumBytes) {}

    /// `line` includes its line end. Interim replies (1xx) and trailers are ignored. False: refused.
    [[nodiscard]] bool addHeaderLine(std::string_view line);

    /// False: refused.
    [[nodiscard]] bool addBody(std::string_view piece);

    /// Must be called when the transfer ended without an error. False: refused, because a compressed body is
    /// cut off.
    [[nodiscard]] bool finish();

    /// Nullopt until the headers are complete.
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
    /// Returns what `step` returns; refuses the reply when there is no memory for it.
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
