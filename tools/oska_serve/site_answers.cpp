#include "tools/oska_serve/site_answers.h"

#include <charconv>
#include <exception>
#include <new>
#include <utility>

#include "oska/json/json.h"
#include "oska/resources/bundle.h"
#include "oska/url/url.h"
#include "tools/oska/cli/wording.h"
#include "tools/oska_serve/byte_ranges.h"
#include "tools/oska_serve/replies.h"
#include "tools/oska_serve/upload_body.h"

namespace oska::tool {

using httplib::ContentReader;
using httplib::Request;
using httplib::Response;
using httplib::Server;

namespace {

constexpr auto BUNDLES = R"(/v2/(dapo|pelio)/sectors/([^/]+)/bundle)";
constexpr auto FILES = R"(/.*)";
constexpr auto UPLOADS = R"(/v2/recordings/rfds)";
// FILES does not match a line feed, which a path may hold once it is decoded.
constexpr auto EVERYTHING = R"([\s\S]*)";
constexpr std::size_t MAXIMUM_UPLOAD_BYTES = std::size_t{64} << 20;

std::optional<std::int64_t> sectorId(const std::string& text) {
    std::int64_t id = 0;
    const auto* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, id);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(id) : std::nullopt;
}

/// Whether the text is a host with or without a port; nothing else may go into the URL.
bool isAuthority(const std::string& text) {
    constexpr auto ALLOWED = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-_:[]";
    if (text.find_first_not_of(ALLOWED) != std::string::npos) return false;
    const auto url = Url::parse("http://" + text + "/");
    return url && url->host();
}

std::string notAnswered(const Request& request) {
    return inQuotes(request.method + " " + request.path) + " is not answered here";
}

/// Gives a reason to what the library itself has refused.
void explain(const Request& request, Response& response) {
    if (response.has_header("Content-Type")) return;
    refuse(request, response,
           {response.status,
            response.status == 416 ? "the header Range cannot be understood" : notAnswered(request)});
}

// Without this the library would unpack the body into memory before it refuses the request.
void refuseBody(const Request& request, Response& response, const ContentReader& read) {
    const bool isRead = skipBody(request, read);
    refuse(request, response, {404, notAnswered(request), !isRead});
}

/// The library offers no reader of bodies for this method.
Server::HandlerResponse refusePreface(const Request& request, Response& response) {
    if (request.method != "PRI") return Server::HandlerResponse::Unhandled;
    refuse(request, response, {400, notAnswered(request), true});
    return Server::HandlerResponse::Handled;
}

std::string reasonOf(const std::exception_ptr& thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const std::bad_alloc&) {
        return "there is not enough memory to answer this";
    } catch (const std::exception& exception) {
        return exception.what();
    }
}

void refuseStranger(const Request& request, Response& response, bool isUnread = false) {
    response.set_header("WWW-Authenticate", "Bearer");
    refuse(request, response,
           {401, "the header Authorization does not hold the token that is required", isUnread});
}

void explainThrown(const Request& request, Response& response, const std::exception_ptr& thrown) {
    refuse(request, response, {500, reasonOf(thrown), true});
}

/// Refusals have been reported already, with their reason.
void reportAnswered(const Request& request, const Response& response) {
    if (response.status < 400) report(request, response);
}

}  // namespace

std::string authority(const std::string& address, int port) {
    const bool isIpV6 = address.find(':') != std::string::npos;
    return (isIpV6 ? "[" + address + "]" : address) + ":" + std::to_string(port);
}

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
    server.Post(UPLOADS, [this](const Request& request, Response& response, const ContentReader& read) {
        answerUpload(request, response, read);
    });
    server.Post(EVERYTHING, refuseBody);
    server.Put(EVERYTHING, refuseBody);
    server.Patch(EVERYTHING, refuseBody);
    server.Delete(EVERYTHING, refuseBody);
    server.set_pre_routing_handler(refusePreface);
    server.set_expect_100_continue_handler(
        [this](const Request& request, Response& response) { return answerExpectation(request, response); });
    server.set_exception_handler(explainThrown);
    server.set_error_handler(explain);
    // Before the reply is sent, so that the lines come in the order in which a client asks.
    if (reportsAnswers) server.set_post_routing_handler(reportAnswered);
}

void SiteAnswers::answerBundle(const Request& request, Response& response) const {
    if (!admits(request)) return refuseStranger(request, response);
    const auto origin = originFor(request);
    if (!origin) return refuse(request, response, {400, "the header Host does not name a host"});
    const auto sector = sectorId(request.matches[2]);
    if (!sector)
        return refuse(request, response, {404, inQuotes(request.matches[2].str()) + " is no sector id"});
    const auto path = std::to_string(*sector) + "/" + request.matches[1].str() + ".json";
    const auto file = folder_.read(path);
    if (!file) return refuse(request, response, {404, "no such sector here: the site has no file " + path});
    const BundleOutput output{.url = *origin + "/" + path, .version_id = versionOf(file->content)};
    sendContent(request, response, {*json::encode(output, json::Slashes::plain), file->type});
}

void SiteAnswers::answerFile(const Request& request, Response& response) const {
    auto file = folder_.read(std::string_view(request.path).substr(1));
    if (!file) return refuse(request, response, {404, "nothing is served at " + inQuotes(request.path)});
    sendContent(request, response, *std::move(file));
}

int SiteAnswers::answerExpectation(const Request& request, Response& response) const {
    constexpr int GO_ON = 100;
    if (request.path != UPLOADS || admits(request)) return GO_ON;
    refuseStranger(request, response, true);
    return response.status;
}

void SiteAnswers::answerUpload(const Request& request, Response& response, const ContentReader& read) {
    if (!admits(request)) return refuseStranger(request, response, !skipBody(request, read));
    const auto body = readBody(request, read, MAXIMUM_UPLOAD_BYTES);
    if (!body) return refuse(request, response, body.error());
    if (const auto refusal = take(*body)) return refuse(request, response, *refusal);
    (void)takeRanges(request);
    response.status = 200;
}

std::optional<Refusal> SiteAnswers::take(const std::string& body) {
    // A decoded body may take ten times its size, so only one thread at a time decodes.
    const std::lock_guard lock(decoding_);
    const auto samples = json::decode<std::vector<platform::ReceivedForce>>(body);
    if (!samples) {
        return Refusal{400, "not an array of samples: line " + std::to_string(samples.error().line) + ": " +
                                faultText(samples.error())};
    }
    auto problem = uploads_ ? uploads_->append(*samples) : std::nullopt;
    return problem ? std::optional(Refusal{500, *std::move(problem)}) : std::nullopt;
}

bool SiteAnswers::admits(const Request& request) const {
    return !requiredToken_ || request.get_header_value("Authorization") == "Bearer " + *requiredToken_;
}

std::optional<std::string> SiteAnswers::originFor(const Request& request) const {
    const auto host = request.has_header("Host") ? request.get_header_value("Host")
                                                 : authority(request.local_addr, request.local_port);
    return isAuthority(host) ? std::optional(scheme_ + "://" + host) : std::nullopt;
}

}  // namespace oska::tool
