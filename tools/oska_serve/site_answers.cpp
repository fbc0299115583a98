#include "tools/oska_serve/site_answers.h"

#include <charconv>
#include <utility>

#include "oska/platform/json.h"
#include "oska/platform/url.h"
#include "oska/resources/bundle.h"
#include "tools/oska/complaint.h"
#include "tools/oska/wording.h"

namespace oska::tool {

using httplib::Request;
using httplib::Response;

namespace {

constexpr auto BUNDLES = R"(/v2/(dapo|pelio)/sectors/([^/]+)/bundle)";
constexpr auto FILES = R"(/.*)";
constexpr auto UPLOADS = R"(/v2/recordings/rfds)";

void report(const Request& request, const Response& response, const std::string& reason = {}) {
    complain(inQuotes(request.method + " " + request.target) + " " + std::to_string(response.status) +
             reason);
}

void refuse(const Request& request, Response& response, int status, const std::string& reason) {
    response.status = status;
    response.set_content(reason + '\n', "text/plain; charset=utf-8");
    report(request, response, ": " + reason);
}

// With a body at hand the library would compress it for whoever can take that, which on loopback costs more
// than it saves.
void send(Response& response, SiteFile file) {
    if (file.content.empty()) return response.set_content("", std::string(file.type));
    const auto content = std::make_shared<const std::string>(std::move(file.content));
    response.set_content_provider(content->size(), std::string(file.type),
                                  [content](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                                      return sink.write(content->data() + offset, length);
                                  });
}

std::optional<std::int64_t> sectorId(const std::string& text) {
    std::int64_t id = 0;
    const auto* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, id);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(id) : std::nullopt;
}

/// A host with or without a port, and nothing that could lead elsewhere in a URL.
bool isAuthority(const std::string& text) {
    constexpr auto ALLOWED = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-_:[]";
    if (text.find_first_not_of(ALLOWED) != std::string::npos) return false;
    const auto url = platform::Url::parse("http://" + text + "/");
    return url && url->host();
}

std::string localAuthority(const Request& request) {
    const bool isIpV6 = request.local_addr.find(':') != std::string::npos;
    return (isIpV6 ? "[" + request.local_addr + "]" : request.local_addr) + ":" +
           std::to_string(request.local_port);
}

/// What the library has refused by itself.
void explain(const Request& request, Response& response) {
    if (!response.body.empty()) return;
    refuse(request, response, response.status,
           inQuotes(request.method + " " + request.path) + " is not answered here");
}

/// What was refused is reported with its reason already.
void reportAnswered(const Request& request, const Response& response) {
    if (response.status < 400) report(request, response);
}

}  // namespace

SiteAnswers::SiteAnswers(SiteFolder folder, std::unique_ptr<UploadFile> uploads,
                         std::optional<std::string> requiredToken, std::string scheme)
    : folder_(std::move(folder)),
      uploads_(std::move(uploads)),
      requiredToken_(std::move(requiredToken)),
      scheme_(std::move(scheme)) {}

void SiteAnswers::installIn(httplib::Server& server, bool reportsAnswers) {
    server.Get(BUNDLES,
               [this](const Request& request, Response& response) { answerBundle(request, response); });
    server.Get(FILES, [this](const Request& request, Response& response) { answerFile(request, response); });
    server.Post(UPLOADS,
                [this](const Request& request, Response& response) { answerUpload(request, response); });
    server.set_error_handler(explain);
    // Before the reply is sent, so that the lines come in the order in which a client asks.
    if (reportsAnswers) server.set_post_routing_handler(reportAnswered);
}

void SiteAnswers::answerBundle(const Request& request, Response& response) const {
    if (!admits(request, response)) return;
    const auto origin = originFor(request);
    if (!origin) return refuse(request, response, 400, "the header Host does not name a host");
    const auto sector = sectorId(request.matches[2]);
    if (!sector)
        return refuse(request, response, 404, inQuotes(request.matches[2].str()) + " is no sector id");
    const auto path = std::to_string(*sector) + "/" + request.matches[1].str() + ".json";
    const auto file = folder_.read(path);
    if (!file) return refuse(request, response, 404, "no such sector here: the site has no file " + path);
    const BundleOutput output{.url = *origin + "/" + path, .version_id = versionOf(file->content)};
    send(response, {*platform::json::encode(output, platform::json::Slashes::plain), file->type});
}

void SiteAnswers::answerFile(const Request& request, Response& response) const {
    auto file = folder_.read(std::string_view(request.path).substr(1));
    if (!file) return refuse(request, response, 404, "nothing is served at " + inQuotes(request.path));
    send(response, *std::move(file));
}

void SiteAnswers::answerUpload(const Request& request, Response& response) const {
    if (!admits(request, response)) return;
    const auto samples = platform::json::decode<std::vector<platform::ReceivedForce>>(request.body);
    if (!samples) {
        return refuse(request, response, 400,
                      "not an array of samples: line " + std::to_string(samples.error().line) + ": " +
                          faultText(samples.error()));
    }
    const auto problem = uploads_ ? uploads_->append(*samples) : std::nullopt;
    if (problem) return refuse(request, response, 500, *problem);
    response.status = 200;
}

bool SiteAnswers::admits(const Request& request, Response& response) const {
    if (!requiredToken_ || request.get_header_value("Authorization") == "Bearer " + *requiredToken_)
        return true;
    response.set_header("WWW-Authenticate", "Bearer");
    refuse(request, response, 401, "the header Authorization does not hold the token that is required");
    return false;
}

std::optional<std::string> SiteAnswers::originFor(const Request& request) const {
    const auto host = request.has_header("Host") ? request.get_header_value("Host") : localAuthority(request);
    return isAuthority(host) ? std::optional(scheme_ + "://" + host) : std::nullopt;
}

}  // namespace oska::tool
