#include "oska/foundation/network_manager.h"

#include <utility>

#include "oska/foundation/http_send.h"
#include "oska/foundation/log_message.h"
#include "oska/foundation/once.h"
#include "oska/foundation/server_trust.h"
#include "oska/json/json.h"
#include "oska/text/text.h"

namespace oska {
namespace {

using platform::HttpErrorKind;
using platform::HttpOutcome;
using platform::HttpRequest;

constexpr int NO_REPLY_STATUS = 500;
constexpr int NOT_SENT_STATUS = 406;
constexpr std::string_view GET_NOT_SENT = "Invalid URL or failed to get token";
constexpr std::string_view POST_NOT_SENT = "Invalid URL or failed to encode JSON";
constexpr std::chrono::seconds REQUEST_TIMEOUT{60};
constexpr std::chrono::seconds SESSION_TIMEOUT{5};
constexpr std::size_t MAXIMUM_REPLY_BYTES = std::size_t{1}
                                            << 20;  // of a descriptor; bundles do not come here

struct Result {
    int statusCode;
    std::string message;
};

std::string errorMessage(const platform::HttpError& error) {
    return error.kind == HttpErrorKind::timedOut ? "Timed out" : error.description;
}

Result resultOf(HttpOutcome outcome) {
    const bool isHttp = outcome.reply && outcome.reply->status;
    const int status = isHttp ? *outcome.reply->status : NO_REPLY_STATUS;
    if (outcome.error) return {status, errorMessage(*outcome.error)};
    if (!isHttp) return {NO_REPLY_STATUS, "Request failed"};
    if (!platform::isSuccess(status)) return {status, describe(*outcome.reply)};
    auto body = std::move(outcome.body).value_or("");
    if (!text::isUtf8(body)) body.clear();
    return {status, std::move(body)};
}

std::string replaceAll(std::string_view text, std::string_view what, std::string_view with) {
    std::string result;
    for (auto at = text.find(what); at != std::string_view::npos; at = text.find(what)) {
        result.append(text.substr(0, at)).append(with);
        text.remove_prefix(at + what.size());
    }
    return result.append(text);
}

/// `forcedAt`: the time of a forced update in milliseconds, as text; empty for one that is not.
std::string bundleRequestText(std::string_view urlTemplate, const SectorIdOsInput& input,
                              const std::string& forcedAt) {
    auto text = replaceAll(urlTemplate, "{pk}", std::to_string(input.sector_id));
    auto components = UrlComponents::parse(text);
    if (!components) return text;
    std::vector<UrlQueryItem> items{{"operating_system", input.operating_system}};
    if (!forcedAt.empty()) items.push_back({"_rt", forcedAt});
    components->setQueryItems(items);
    const auto url = components->url();
    return url ? url->absoluteString() : text;
}

platform::HttpSession::Completion answering(std::function<void(int, std::string)> answer) {
    return [answer = std::move(answer)](HttpOutcome outcome) {
        auto result = resultOf(std::move(outcome));
        answer(result.statusCode, std::move(result.message));
    };
}

void ignoreCaches(HttpRequest& request) {
    request.cachePolicy = platform::HttpCachePolicy::reloadIgnoringLocalCache;
    request.headers.push_back({"Cache-Control", "no-cache"});
    request.headers.push_back({"Pragma", "no-cache"});
}

HttpRequest authorizedRequest(Url url, std::string method, std::optional<std::string> body,
                              const std::string& token) {
    HttpRequest request{.url = std::move(url), .method = std::move(method), .timeout = REQUEST_TIMEOUT};
    request.headers.push_back({"Content-Type", "application/json"});
    if (body) request.headers.push_back({"Content-Length", std::to_string(body->size())});
    request.headers.push_back({"Authorization", "Bearer " + token});
    request.body = std::move(body);
    return request;
}

}  // namespace

const std::shared_ptr<OskaNetworkManager>& OskaNetworkManager::shared() {
    static const auto* manager =
        new std::shared_ptr<OskaNetworkManager>(std::make_shared<OskaNetworkManager>(platform::current()));
    return *manager;
}

OskaNetworkManager::SessionPool::SessionPool(platform::HttpSessionFactory& factory,
                                             const std::shared_ptr<platform::HttpSessionDelegate>& delegate) {
    const platform::HttpSessionConfiguration configuration{.timeoutForRequest = SESSION_TIMEOUT,
                                                           .timeoutForResource = SESSION_TIMEOUT,
                                                           .maximumReplyBytes = MAXIMUM_REPLY_BYTES};
    for (auto& session : sessions_) session = makeHttpSession(factory, configuration, delegate);
}

platform::HttpSession* OskaNetworkManager::SessionPool::next() {
    return sessions_[count_.fetch_add(1) % sessions_.size()].get();
}

OskaNetworkManager::OskaNetworkManager(const platform::Platform& platform)
    : mainQueue_(platform.mainQueue),
      clock_(platform.clock),
      auth_(platform.auth),
      trustDelegate_(std::make_shared<OskaOnPremiseServerTrustDelegate>()),
      recSessions_(*platform.http, trustDelegate_),
      commonSessions_(*platform.http, trustDelegate_) {}

template <class Input>
OskaNetworkManager::Answer OskaNetworkManager::answerTo(
    std::function<void(int, std::string, Input)> completion, Input input) {
    struct Caller {
        std::function<void(int, std::string, Input)> completion;
        Input input;
    };
    return once(Answer([queue = mainQueue_,
                        caller = std::make_shared<Caller>(Caller{std::move(completion), std::move(input)})](
                           int statusCode, std::string message) {
        queue->async([caller, statusCode, message = std::move(message)]() mutable {
            caller->completion(statusCode, std::move(message), std::move(caller->input));
        });
    }));
}

void OskaNetworkManager::getSectorBundle(std::string_view url, SectorIdOsInput input, bool forceUpdate,
                                         BundleCompletion completion) {
    const auto text =
        bundleRequestText(url, input, forceUpdate ? std::to_string(clock_->now().milliseconds) : "");
    writeDirectLine("(QuenloResource) getSectorBundle : " + text);
    const auto answer = answerTo<SectorIdOsInput>(std::move(completion), std::move(input));
    const auto parsed = Url::parse(text);
    if (!parsed) return answer(NOT_SENT_STATUS, std::string(GET_NOT_SENT));
    makeAuthorizedRequest(*parsed, "GET", std::nullopt,
                          [weak = weak_from_this(), answer, forceUpdate](std::optional<HttpRequest> request) {
                              const auto self = weak.lock();
                              if (!self || !request)
                                  return answer(NOT_SENT_STATUS, std::string(GET_NOT_SENT));
                              if (forceUpdate) ignoreCaches(*request);
                              sendHttp(self->commonSessions_.next(), std::move(*request), answering(answer));
                          });
}

void OskaNetworkManager::postReceivedForces(std::string_view url, std::vector<platform::ReceivedForce> input,
                                            PostCompletion completion) {
    auto body = json::encode(input);
    const auto answer =
        answerTo<std::vector<platform::ReceivedForce>>(std::move(completion), std::move(input));
    if (!body) {
        writeDirectLine("Error encoding JSON: " + body.error().message());
        return answer(NOT_SENT_STATUS, std::string(POST_NOT_SENT));
    }
    const auto parsed = Url::parse(url);
    if (!parsed) return answer(NOT_SENT_STATUS, std::string(POST_NOT_SENT));
    makeAuthorizedRequest(*parsed, "POST", *std::move(body),
                          [weak = weak_from_this(), answer](std::optional<HttpRequest> request) {
                              const auto self = weak.lock();
                              if (!self || !request)
                                  return answer(NOT_SENT_STATUS, std::string(POST_NOT_SENT));
                              sendHttp(self->recSessions_.next(), std::move(*request), answering(answer));
                          });
}

void OskaNetworkManager::makeAuthorizedRequest(Url url, std::string method, std::optional<std::string> body,
                                               RequestMaker completion) {
    const bool isUpload = body.has_value();
    const auto answer = once(
        WaitingUploads::Answer([url = std::move(url), method = std::move(method), body = std::move(body),
                                completion = std::move(completion)](platform::TokenResult result) mutable {
            const auto* token = std::get_if<std::string>(&result);
            if (!token) return completion(std::nullopt);
            completion(authorizedRequest(std::move(url), std::move(method), std::move(body), *token));
        }));
    const auto ticket = isUpload ? waitingUploads_.enter(answer) : WaitingUploads::NO_TICKET;
    const WaitingUploads::Answer provided = [self = shared_from_this(), answer,
                                             ticket](platform::TokenResult result) {
        self->waitingUploads_.leave(ticket);
        answer(std::move(result));
    };
    try {
        auth_->getAccessToken(true, provided);
    } catch (...) {
        provided(platform::TokenFailure{});
    }
}

}  // namespace oska
