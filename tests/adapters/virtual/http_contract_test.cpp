#include <thread>

#include "adapters/virtual/memory_server.h"
#include "tests/contract/http_session_contract.h"

namespace oska::virtual_world {
namespace {

using platform::ContractAnswer;
using platform::ContractRequest;
using namespace std::chrono_literals;

class MemoryDriver {
public:
    MemoryDriver() {
        server_.setUntrusted("localhost");
        server_.onPath("/refused", always(refusal()));
    }
    platform::HttpSessionFactory& factory() { return server_; }
    void answer(const std::string& path, const ContractAnswer& answer) {
        server_.onPath(
            path, always(answer.isSilent ? silence() : reply(answer.status, answer.body, answer.headers)));
    }
    std::string url(const std::string& path) const { return "http://server" + path; }
    std::string untrustedUrl(const std::string& path) const { return "https://localhost" + path; }
    std::string refusedUrl() const { return url("/refused"); }
    std::vector<ContractRequest> requests() const;
    void await(const std::function<bool()>& isDone) {
        for (time_->runDue(); !isDone(); time_->advanceBy(1ms)) std::this_thread::yield();
    }
    void shutDown() { server_.shutDown(); }

private:
    std::shared_ptr<VirtualMainQueue> time_ = std::make_shared<VirtualMainQueue>(platform::WallTime{});
    MemoryServer server_{time_};
};

std::vector<ContractRequest> MemoryDriver::requests() const {
    std::vector<ContractRequest> seen;
    for (const auto& [session, at, request] : server_.requests()) {
        const auto& text = request.url.absoluteString();
        seen.push_back({request.method, text.substr(text.find('/', text.find("//") + 2)), request.headers,
                        request.body.value_or("")});
    }
    return seen;
}

}  // namespace
}  // namespace oska::virtual_world

namespace oska::platform {
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, HttpSessionContract, virtual_world::MemoryDriver);
}  // namespace oska::platform
