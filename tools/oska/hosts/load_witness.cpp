#include "tools/oska/hosts/load_witness.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

#include "oska/json/json.h"
#include "oska/resources/bundle.h"
#include "oska/text/text.h"
#include "oska/url/url.h"
#include "tools/oska/cli/wording.h"
#include "tools/oska/hosts/watched_sessions.h"

namespace oska::tool {
namespace {

using platform::HttpErrorKind;
using platform::HttpOutcome;
using platform::HttpRequest;
using platform::HttpSessionFactory;

constexpr int OK = 200;

struct Download {
    std::string url;
    bool isOfBundle = false;  ///< else of its address
    HttpOutcome outcome;
};

bool isSuccess(const HttpOutcome& outcome) {
    return outcome.reply && platform::isSuccess(outcome.reply->status.value_or(0));
}

/// The endpoint is asked with a token, the bundle's server is not.
bool isOfBundle(const HttpRequest& request) {
    return std::none_of(request.headers.begin(), request.headers.end(),
                        [](const auto& header) { return header.name == "Authorization"; });
}

std::string errorText(const platform::HttpError& error) {
    auto text = error.description.empty() ? "no reply" : error.description;
    if (text.ends_with('.')) text.pop_back();
    if (error.kind == HttpErrorKind::cannotConnect) text += "; does a server listen there?";
    if (error.kind == HttpErrorKind::untrustedCertificate)
        text += "; only for the host of --base-url any certificate will do";
    return text;
}

std::string statusText(const Download& download, std::int64_t sectorId) {
    const auto status = download.outcome.reply->status.value_or(0);
    const auto text = describe(*download.outcome.reply);
    if (status == 401 || status == 403) return text + "; the server does not take this token (--token)";
    if (status == 404 && !download.isOfBundle)
        return text + "; does the server have sector " + std::to_string(sectorId) + "?";
    return text;
}

template <class Bundle>
std::string faultOfBundle(const Download& download) {
    const auto bundle = json::decode<Bundle>(download.outcome.body.value_or(""));
    return bundle ? download.url + ": the bundle could not be used" : faultLine(download.url, bundle.error());
}

/// Why the address that the endpoint gave for a bundle cannot be used.
std::string faultOfAddress(const Download& download) {
    const auto body = download.outcome.body.value_or("");
    if (!text::isUtf8(body)) return download.url + ": the reply is not UTF-8";
    const auto output = json::decode<BundleOutput>(body);
    if (!output) return faultLine(download.url, output.error());
    return download.url + ": the bundle's address " + inQuotes(output->url) + " is no URL";
}

std::string faultOf(const Download& download, OskaService service, std::int64_t sectorId) {
    const auto& [url, isOfBundle, outcome] = download;
    if (outcome.error) return url + ": " + errorText(*outcome.error);
    const bool isRefused = isOfBundle ? !isSuccess(outcome) : outcome.reply->status != OK;
    if (isRefused) return url + ": " + statusText(download, sectorId);
    if (!isOfBundle) return faultOfAddress(download);
    return service == OskaService::dapo ? faultOfBundle<DapoBundle>(download)
                                        : faultOfBundle<PelioBundle>(download);
}

/// The URL that a base URL without "://" may mean. Its slashes at the end are removed. Nullopt without a
/// host.
std::optional<std::string> withScheme(std::string_view base) {
    const std::string_view scheme = base.starts_with("https:") ? "https:" : "http:";
    if (base.starts_with(scheme)) base.remove_prefix(scheme.size());
    base.remove_prefix(std::min(base.find_first_not_of('/'), base.size()));
    if (base.empty()) return std::nullopt;
    return std::string(scheme).append("//").append(base);
}

/// Why no request can be made with the base URL. It is named itself: the URL of a request that was made with
/// it would not show the mistake.
std::optional<std::string> faultOfBaseUrl() {
    const auto base = OskaOnPremiseNetworkConstants::baseURL();
    if (base.find("://") == std::string::npos) {
        const auto meant = withScheme(base);
        if (!meant) return "the base URL " + inQuotes(base) + " names no host";
        return "the base URL " + inQuotes(base) + " has no scheme; " + inQuotes(*meant) + " may be meant";
    }
    if (!Url::parse(base)) return "the base URL " + inQuotes(base) + " is no URL";
    return std::nullopt;
}

}  // namespace

struct LoadWitness::Sight {
    std::mutex mutex;
    std::optional<Download> last;

    void note(Download download) {
        const std::lock_guard lock(mutex);
        last = std::move(download);
    }
};

LoadWitness::LoadWitness(OskaService service, std::int64_t sectorId)
    : service_(service), sectorId_(sectorId), sight_(std::make_shared<Sight>()) {}

std::shared_ptr<HttpSessionFactory> LoadWitness::watch(std::shared_ptr<HttpSessionFactory> factory) const {
    using Completion = platform::HttpSession::Completion;
    return watchedSessions(std::move(factory),
                           [sight = sight_](const HttpRequest& request, Completion completion) -> Completion {
                               if (request.body) return completion;  // an upload
                               return [completion = std::move(completion), sight,
                                       url = request.url.absoluteString(),
                                       bringsBundle = isOfBundle(request)](HttpOutcome outcome) {
                                   sight->note({url, bringsBundle, outcome});
                                   completion(std::move(outcome));
                               };
                           });
}

std::string LoadWitness::reason() const {
    if (const auto fault = faultOfBaseUrl()) return *fault;
    const std::lock_guard lock(sight_->mutex);
    if (sight_->last) return faultOf(*sight_->last, service_, sectorId_);
    return "there is no token, as when no user is signed in (--token gives one)";
}

void LoadWitness::forget() {
    const std::lock_guard lock(sight_->mutex);
    sight_->last.reset();
}

}  // namespace oska::tool
