#pragma once

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "adapters/native/curl_http_session.h"
#include "tests/contract/http_session_contract.h"
#include "tests/fakes/loopback_server.h"

namespace oska::native {

/// A port of this machine where no server listens. It is bound, so that no other program can use it.
class UnheardPort {
public:
    UnheardPort();
    ~UnheardPort();
    UnheardPort(const UnheardPort&) = delete;
    UnheardPort& operator=(const UnheardPort&) = delete;

    [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

private:
    int socket_;
    int port_ = 0;
};

/// Real sessions and real servers for the contract of HTTP sessions.
class NativeHttpDriver {
public:
    platform::HttpSessionFactory& factory() { return factory_; }
    void answer(const std::string& path, platform::ContractAnswer answer);
    [[nodiscard]] std::string url(const std::string& path) const { return plain_.url(path); }
    [[nodiscard]] std::string untrustedUrl(const std::string& path) const {
        return secure_.url(path, "localhost");
    }
    [[nodiscard]] std::string refusedUrl() const { return unheard_.url(); }
    [[nodiscard]] std::vector<platform::ContractRequest> requests() const;
    void await(const std::function<bool()>& isDone) {
        while (!isDone()) std::this_thread::yield();
    }
    void shutDown() { factory_.shutDown(); }

private:
    [[nodiscard]] platform::ContractAnswer answerTo(const std::string& path) const;
    void serve(fakes::WireConnection& connection) const;

    mutable std::mutex mutex_;
    std::map<std::string, platform::ContractAnswer> answers_;
    const UnheardPort unheard_;
    const fakes::TestIdentity selfSigned_{{.names = "DNS:localhost"}};
    fakes::LoopbackServer plain_{[this](fakes::WireConnection& connection) { serve(connection); }};
    fakes::LoopbackServer secure_{[this](fakes::WireConnection& connection) { serve(connection); },
                                  &selfSigned_};
    CurlHttpSessionFactory factory_;
};

}  // namespace oska::native
