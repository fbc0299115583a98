#include "tests/adapters/native/native_http_driver.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace oska::native {

UnheardPort::UnheardPort() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(::bind(socket_, reinterpret_cast<sockaddr*>(&address), size), 0);
    EXPECT_EQ(::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size), 0);
    port_ = ntohs(address.sin_port);
}

UnheardPort::~UnheardPort() { ::close(socket_); }

void NativeHttpDriver::answer(const std::string& path, platform::ContractAnswer answer) {
    const std::lock_guard lock(mutex_);
    answers_[path] = std::move(answer);
}

platform::ContractAnswer NativeHttpDriver::answerTo(const std::string& path) const {
    const std::lock_guard lock(mutex_);
    const auto found = answers_.find(path);
    return found == answers_.end() ? platform::ContractAnswer{.status = 404} : found->second;
}

void NativeHttpDriver::serve(fakes::WireConnection& connection) const {
    while (const auto request = connection.receive()) {
        const auto answer = answerTo(request->target);
        if (answer.isSilent) return connection.awaitHangUp();
        connection.send(fakes::wireReply(answer.status, answer.body, answer.headers));
    }
}

std::vector<platform::ContractRequest> NativeHttpDriver::requests() const {
    std::vector<platform::ContractRequest> seen;
    for (const auto* server : {&plain_, &secure_}) {
        for (const auto& request : server->requests()) {
            seen.push_back({request.method, request.target, request.headers, request.body});
        }
    }
    return seen;
}

}  // namespace oska::native
