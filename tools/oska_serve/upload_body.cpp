#include "tools/oska_serve/upload_body.h"

#include <memory>
#include <optional>
#include <utility>

#include "tools/oska/cli/wording.h"

namespace oska::tool {

using httplib::ContentReader;
using httplib::Request;
using httplib::detail::decompressor;

namespace {

constexpr std::size_t MAXIMUM_SKIPPED_BYTES = std::size_t{1} << 30;

// By default the library unpacks a body before it passes on the first piece, however large it is, and parses
// forms. Without these headers it passes the body on as it comes. The request is the library's own object and
// not const; see takeRanges().
std::string takeEncoding(const Request& request) {
    auto encoding = request.get_header_value("Content-Encoding");
    auto& headers = const_cast<Request&>(request).headers;
    headers.erase("Content-Encoding");
    headers.erase("Content-Type");
    return encoding;
}

std::unique_ptr<decompressor> unpackerFor(const std::string& encoding) {
    if (encoding == "gzip" || encoding == "deflate")
        return std::make_unique<httplib::detail::gzip_decompressor>();
    if (encoding.find("br") != std::string::npos)
        return std::make_unique<httplib::detail::brotli_decompressor>();
    return nullptr;
}

class LimitedBody {
public:
    LimitedBody(const std::string& encoding, std::size_t limit)
        : encoding_(encoding), limit_(limit), unpacker_(unpackerFor(encoding)) {}

    /// Takes what was received. Returns false if that is more than the server reads at all.
    bool take(const char* data, std::size_t size) {
        received_ += size;
        if (!problem_) unpack(data, size);
        if (problem_) std::string().swap(content_);
        return received_ <= MAXIMUM_SKIPPED_BYTES;
    }

    /// `isWhole`: whether everything was received.
    Result<std::string, Refusal> finish(bool isWhole) && {
        if (!isWhole && !problem_) problem_ = Refusal{400, "the body is not whole", true};
        if (!problem_) return std::move(content_);
        problem_->isUnread = !isWhole;
        return *std::move(problem_);
    }

private:
    void unpack(const char* data, std::size_t size) {
        if (!unpacker_) {
            keep(data, size);
            return;
        }
        const auto keepPiece = [this](const char* piece, std::size_t length) { return keep(piece, length); };
        if (unpacker_->decompress(data, size, keepPiece) || problem_) return;
        problem_ = Refusal{400, "the body cannot be unpacked as " + inQuotes(encoding_)};
    }

    bool keep(const char* data, std::size_t size) {
        if (size > limit_ - content_.size()) {
            problem_ = Refusal{413, "the body holds more than " + std::to_string(limit_) + " bytes"};
            return false;
        }
        content_.append(data, size);
        return true;
    }

    const std::string encoding_;
    const std::size_t limit_;
    const std::unique_ptr<decompressor> unpacker_;
    std::size_t received_ = 0;
    std::string content_;
    std::optional<Refusal> problem_;
};

}  // namespace

Result<std::string, Refusal> readBody(const Request& request, const ContentReader& read, std::size_t limit) {
    LimitedBody body(takeEncoding(request), limit);
    const bool isWhole = read([&](const char* data, std::size_t size) { return body.take(data, size); });
    return std::move(body).finish(isWhole);
}

bool skipBody(const Request& request, const ContentReader& read) {
    (void)takeEncoding(request);
    std::size_t received = 0;
    return read([&](const char*, std::size_t size) { return (received += size) <= MAXIMUM_SKIPPED_BYTES; });
}

}  // namespace oska::tool
