#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/foundation/sector_id_os_input.h"
#include "oska/foundation/waiting_uploads.h"
#include "oska/platform/platform.h"

namespace oska {

/// Sends the kit's two kinds of authorised JSON requests: the GET for a sector's bundle descriptor and the
/// POST of a batch of samples. Each asks the token provider first and goes out on one of three sessions of
/// its pool in turn.
///
/// Results: a status code and a text. The text is the reply's body for a status of 200 to 299 (empty when it
/// is not UTF-8); without a usable reply the status is 500, without a URL or a token 406. Nothing is retried.
/// The token provider's first answer counts; an exception counts as a failure. While it does not answer, at
/// most eight uploads wait; older ones end with 406. Threads: operations on any thread; they return at once.
/// Each completion is called once, later, on the main queue, with the caller's input. Lifetime: owned by a
/// shared_ptr; a request that waits for a token keeps it alive, and destroying it cancels the requests that
/// have been sent.
class OskaNetworkManager : public std::enable_shared_from_this<OskaNetworkManager> {
public:
    using BundleCompletion = std::function<void(int statusCode, std::string message, SectorIdOsInput input)>;
    using PostCompletion =
        std::function<void(int statusCode, std::string message, std::vector<platform::ReceivedForce> input)>;

    /// The instance of the process, made on first use over the installed platform.
    static const std::shared_ptr<OskaNetworkManager>& shared();

    explicit OskaNetworkManager(const platform::Platform& platform);

    /// Asks for a sector's bundle descriptor. `url` is a template in which "{pk}" stands for the sector id;
    /// `forceUpdate` asks for a reply from no cache.
    void getSectorBundle(std::string_view url, SectorIdOsInput input, bool forceUpdate,
                         BundleCompletion completion);

    /// Uploads a batch of samples as one JSON array.
    void postReceivedForces(std::string_view url, std::vector<platform::ReceivedForce> input,
                            PostCompletion completion);

private:
    /// Three sessions used in turn. The counter is atomic because token providers answer on any thread.
    class SessionPool {
    public:
        SessionPool(platform::HttpSessionFactory& factory,
                    const std::shared_ptr<platform::HttpSessionDelegate>& delegate);
        /// Null where the factory made none.
        platform::HttpSession* next();

    private:
        std::array<std::unique_ptr<platform::HttpSession>, 3> sessions_;
        std::atomic<std::uint64_t> count_{0};
    };

    using Answer = std::function<void(int statusCode, std::string message)>;
    using RequestMaker = std::function<void(std::optional<platform::HttpRequest>)>;

    /// Hands a request with a fresh bearer token to `completion`, or nullopt when the provider has none. A
    /// request with a body waits among the uploads. `completion` is called once, on any thread, and must not
    /// keep the manager alive.
    void makeAuthorizedRequest(Url url, std::string method, std::optional<std::string> body,
                               RequestMaker completion);
    /// Returns a function that posts `completion`, with the outcome and `input`, to the main queue. Its first
    /// call counts.
    template <class Input>
    Answer answerTo(std::function<void(int, std::string, Input)> completion, Input input);

    std::shared_ptr<platform::MainQueue> mainQueue_;
    std::shared_ptr<platform::WallClock> clock_;
    std::shared_ptr<platform::QuenloAuthManager> auth_;
    std::shared_ptr<platform::HttpSessionDelegate> trustDelegate_;
    SessionPool recSessions_;
    SessionPool commonSessions_;
    WaitingUploads waitingUploads_;
};

}  // namespace oska
