#include "tools/oska_serve/replies.h"

#include <memory>
#include <numeric>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/wording.h"
#include "tools/oska_serve/byte_ranges.h"

namespace oska::tool {

using httplib::DataSink;
using httplib::Request;
using httplib::Response;

namespace {

constexpr auto TEXT = "text/plain; charset=utf-8";
constexpr std::string_view BOUNDARY = "oska-part-9f1c27d04be86a35";

// If the library had the body, it would compress it for clients that accept that; on loopback this costs more
// than it saves.
void provide(Response& response, const std::string& type, std::string content, const BytePart& part) {
    if (part.length == 0) return response.set_content("", type);
    const auto kept = std::make_shared<const std::string>(std::move(content));
    const auto* const data = kept->data() + part.offset;
    response.set_content_provider(part.length, type,
                                  [kept, data](std::size_t offset, std::size_t length, DataSink& sink) {
                                      return sink.write(data + offset, length);
                                  });
}

std::string contentRange(const BytePart& part, std::size_t size) {
    return "bytes " + std::to_string(part.offset) + "-" + std::to_string(part.offset + part.length - 1) +
           "/" + std::to_string(size);
}

std::string cutOut(const std::vector<BytePart>& parts, const SiteFile& file) {
    std::string body;
    for (const auto& part : parts) {
        body.append("--").append(BOUNDARY).append("\r\nContent-Type: ").append(file.type);
        body.append("\r\nContent-Range: ").append(contentRange(part, file.content.size())).append("\r\n\r\n");
        body.append(file.content, part.offset, part.length).append("\r\n");
    }
    return body.append("--").append(BOUNDARY).append("--\r\n");
}

std::size_t totalOf(const std::vector<BytePart>& parts) {
    return std::accumulate(parts.begin(), parts.end(), std::size_t{0},
                           [](std::size_t sum, const BytePart& part) { return sum + part.length; });
}

void sendParts(Response& response, const std::vector<BytePart>& parts, SiteFile file) {
    response.status = 206;
    if (parts.size() == 1) {
        response.set_header("Content-Range", contentRange(parts[0], file.content.size()));
        return provide(response, std::string(file.type), std::move(file.content), parts[0]);
    }
    auto body = cutOut(parts, file);
    const auto size = body.size();
    provide(response, "multipart/byteranges; boundary=" + std::string(BOUNDARY), std::move(body), {0, size});
}

/// Requires: the response holds a text.
void closeBehind(Response& response) {
    const auto text = std::make_shared<const std::string>(std::exchange(response.body, {}));
    response.headers.erase("Content-Type");
    response.set_header("Connection", "close");
    // The library closes the connection only if a content provider fails.
    response.set_content_provider(text->size(), TEXT,
                                  [text](std::size_t offset, std::size_t length, DataSink& sink) {
                                      sink.write(text->data() + offset, length);
                                      return false;
                                  });
}

}  // namespace

void report(const Request& request, const Response& response, const std::string& reason) {
    complain(inQuotes(request.method + " " + request.target) + " " + std::to_string(response.status) +
             reason);
}

void refuse(const Request& request, Response& response, const Refusal& refusal) {
    (void)takeRanges(request);  // a refusal is sent as a whole
    response.status = refusal.status;
    response.set_content(refusal.reason + '\n', TEXT);
    report(request, response, ": " + refusal.reason);
    if (refusal.isUnread) closeBehind(response);
}

void sendContent(const Request& request, Response& response, SiteFile file) {
    const auto size = file.content.size();
    const auto ranges = takeRanges(request);
    const auto parts = partsOf(ranges, size);
    if (!ranges.empty() && parts.empty()) {
        response.set_header("Content-Range", "bytes */" + std::to_string(size));
        return refuse(
            request, response,
            {416, "the header Range names no byte of the " + std::to_string(size) + " that there are"});
    }
    const bool isWhole = ranges.empty() || totalOf(parts) > size;
    if (!isWhole) return sendParts(response, parts, std::move(file));
    provide(response, std::string(file.type), std::move(file.content), {0, size});
}

}  // namespace oska::tool
