#include <map>
#include <mutex>
#include <thread>

#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

using platform::ContractAnswer;

/// Real sessions and real servers for the contract of HTTP sessions.
class NativeHttpDriver {
public:
    platform::HttpSessionFactory& factory() { return factory_; }
    void answer(const std::string& path, ContractAnswer answer) {
        const std::lock_guard lock(mutex_);
        answers_.insert_or_assign(path, std::move(answer));
    }
    std::string url(const std::string& path) const { return plain_.url(path); }
    std::string untrustedUrl(const std::string& path) const { return secure_.url(path, "localhost"); }
    /// No program without privileges can listen on this port.
    std::string refusedUrl() const { return "http://127.0.0.1:1/"; }
    std::vector<platform::ContractRequest> requests() const;
    void await(const std::function<bool()>& isDone) {
        while (!isDone()) std::this_thread::yield();
    }
    void shutDown() { factory_.shutDown(); }

private:
    ContractAnswer answerTo(const std::string& path) {
        const std::lock_guard lock(mutex_);
        return answers_.try_emplace(path, ContractAnswer{.status = 404}).first->second;
    }

    std::mutex mutex_;
    std::map<std::string, ContractAnswer> answers_;
    const LoopbackServer::Handler serve_ = [this](WireConnection& connection) {
        while (const auto request = connection.receive()) {
            const auto answer = answerTo(request->target);
            if (answer.isSilent) return connection.awaitHangUp();
            connection.send(wireReply(answer.status, answer.body, answer.headers));
        }
    };
    const TestIdentity selfSigned_{{.names = "DNS:localhost"}};
    LoopbackServer plain_{serve_};
    LoopbackServer secure_{serve_, &selfSigned_};
    CurlHttpSessionFactory factory_;
};

std::vector<platform::ContractRequest> NativeHttpDriver::requests() const {
    std::vector<platform::ContractRequest> seen;
    for (const auto* server : {&plain_, &secure_}) {
        for (const auto& request : server->requests())
            seen.push_back({request.method, request.target, request.headers, request.body});
    }
    return seen;
}

}  // namespace
}  // namespace oska::native

namespace oska::platform {
INSTANTIATE_TYPED_TEST_SUITE_P(Native, HttpSessionContract, native::NativeHttpDriver);
}  // namespace oska::platform
