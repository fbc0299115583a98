#include "tools/oska/hosts/watched_sessions.h"

#include <utility>

namespace oska::tool {
namespace {

using platform::HttpRequest;
using platform::HttpSession;
using platform::HttpSessionConfiguration;
using platform::HttpSessionDelegate;
using platform::HttpSessionFactory;

class WatchedSession final : public HttpSession {
public:
    WatchedSession(std::unique_ptr<HttpSession> session, WatchRequest watch)
        : session_(std::move(session)), watch_(std::move(watch)) {}

    void send(HttpRequest request, Completion completion) override {
        auto watched = watch_(request, std::move(completion));
        session_->send(std::move(request), std::move(watched));
    }

private:
    const std::unique_ptr<HttpSession> session_;
    const WatchRequest watch_;
};

class WatchedFactory final : public HttpSessionFactory {
public:
    WatchedFactory(std::shared_ptr<HttpSessionFactory> factory, WatchRequest watch)
        : factory_(std::move(factory)), watch_(std::move(watch)) {}

    [[nodiscard]] std::unique_ptr<HttpSession> makeSession(
        const HttpSessionConfiguration& configuration,
        std::shared_ptr<HttpSessionDelegate> delegate) override {
        return std::make_unique<WatchedSession>(factory_->makeSession(configuration, std::move(delegate)),
                                                watch_);
    }

private:
    const std::shared_ptr<HttpSessionFactory> factory_;
    const WatchRequest watch_;
};

}  // namespace

std::shared_ptr<HttpSessionFactory> watchedSessions(std::shared_ptr<HttpSessionFactory> factory,
                                                    WatchRequest watch) {
    return std::make_shared<WatchedFactory>(std::move(factory), std::move(watch));
}

}  // namespace oska::tool
