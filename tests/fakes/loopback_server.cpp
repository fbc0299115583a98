#include "tests/fakes/loopback_server.h"

#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <sstream>
#include <utility>

#include "oska/text/text.h"

namespace oska::fakes {
namespace {

constexpr std::string_view HEAD_END = "\r\n\r\n";

WireRequest parseHead(const std::string& head) {
    std::istringstream text(head);
    WireRequest request;
    std::string line;
    text >> request.method >> request.target;
    std::getline(text, line);
    while (std::getline(text, line)) {
        if (line.ends_with('\r')) line.pop_back();
        const auto colon = line.find(':');
        const auto value = line.find_first_not_of(' ', colon + 1);
        request.headers.push_back(
            {line.substr(0, colon), value == std::string::npos ? "" : line.substr(value)});
    }
    return request;
}

SSL_CTX* tlsContext(const TestIdentity& identity) {
    auto* context = SSL_CTX_new(TLS_server_method());
    SSL_CTX_use_certificate(context, identity.certificate());
    SSL_CTX_use_PrivateKey(context, identity.key());
    return context;
}

}  // namespace

std::vector<std::string> WireRequest::values(std::string_view name) const {
    std::vector<std::string> found;
    for (const auto& header : headers) {
        if (text::lowercased(header.name) == text::lowercased(name)) found.push_back(header.value);
    }
    return found;
}

bool WireConnection::readMore() {
    std::array<char, 16384> space;
    const auto size = tls_ ? SSL_read(tls_, space.data(), static_cast<int>(space.size()))
                           : static_cast<int>(::recv(socket_, space.data(), space.size(), 0));
    if (size <= 0) return false;
    unread_.append(space.data(), static_cast<std::size_t>(size));
    return true;
}

std::optional<WireRequest> WireConnection::receive() {
    auto headSize = unread_.find(HEAD_END);
    for (; headSize == std::string::npos; headSize = unread_.find(HEAD_END)) {
        if (!readMore()) return std::nullopt;
    }
    auto request = parseHead(unread_.substr(0, headSize));
    const auto sizes = request.values("Content-Length");
    const auto bodyBegin = headSize + HEAD_END.size();
    const auto end = bodyBegin + (sizes.empty() ? 0 : std::stoul(sizes.back()));
    while (unread_.size() < end) {
        if (!readMore()) return std::nullopt;
    }
    request.body = unread_.substr(bodyBegin, end - bodyBegin);
    unread_.erase(0, end);
    onRequest_(request);
    return request;
}

void WireConnection::send(std::string_view bytes) {
    if (tls_) {
        SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size()));
    } else {
        ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }
}

void WireConnection::awaitHangUp() {
    while (readMore()) unread_.clear();
}

bool WireConnection::pause(int milliseconds) {
    pollfd polled{socket_, POLLIN, 0};
    return ::poll(&polled, 1, milliseconds) == 0;
}

LoopbackServer::LoopbackServer(Handler handler, const TestIdentity* identity, const char* address)
    : handler_(std::move(handler)), tls_(identity ? tlsContext(*identity) : nullptr) {
    listenOn(address);
    if (isListening()) acceptor_ = std::thread([this] { acceptAll(); });
}

LoopbackServer::~LoopbackServer() {
    ::shutdown(listener_, SHUT_RDWR);
    if (acceptor_.joinable()) acceptor_.join();
    ::close(listener_);
    for (auto& peer : peers_) ::shutdown(peer.socket, SHUT_RDWR);
    for (auto& peer : peers_) {
        peer.thread.join();
        ::close(peer.socket);
    }
    SSL_CTX_free(tls_);
}

void LoopbackServer::listenOn(const char* address) {
    addrinfo wish{};
    wish.ai_flags = AI_NUMERICHOST;
    wish.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(address, "0", &wish, &found) != 0) return;
    listener_ = ::socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(listener_, found->ai_addr, found->ai_addrlen) == 0 && ::listen(listener_, SOMAXCONN) == 0) {
        ::getsockname(listener_, found->ai_addr, &found->ai_addrlen);
        // The port stands at the same place in both kinds of address.
        port_ = ntohs(reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_port);
    }
    ::freeaddrinfo(found);
}

void LoopbackServer::acceptAll() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    for (;;) {
        const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) return;
        const std::lock_guard lock(mutex_);
        peers_.push_back({socket, std::thread([this, socket] { serve(socket); })});
    }
}

void LoopbackServer::serve(int socket) {
    SSL* tls = tls_ ? SSL_new(tls_) : nullptr;
    if (tls) SSL_set_fd(tls, socket);
    WireConnection connection(socket, tls, [this](const WireRequest& request) {
        const std::lock_guard lock(mutex_);
        requests_.push_back(request);
    });
    if (!tls || SSL_accept(tls) == 1) handler_(connection);
    if (tls) SSL_shutdown(tls);
    SSL_free(tls);
    ::shutdown(socket, SHUT_RDWR);
}

std::string LoopbackServer::url(const std::string& path, const std::string& host) const {
    return (tls_ ? "https://" : "http://") + host + ":" + std::to_string(port_) + path;
}

std::vector<WireRequest> LoopbackServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::size_t LoopbackServer::connections() const {
    const std::lock_guard lock(mutex_);
    return peers_.size();
}

LoopbackServer::Handler LoopbackServer::answering(Answer answer) {
    return [answer = std::move(answer)](WireConnection& connection) {
        while (const auto request = connection.receive()) connection.send(answer(*request));
    };
}

std::string wireReply(int status, std::string_view body, const std::vector<platform::HttpHeader>& headers) {
    auto text = "HTTP/1.1 " + std::to_string(status) + " Whatever\r\n";
    for (const auto& header : headers) text += header.name + ": " + header.value + "\r\n";
    return text + "Content-Length: " + std::to_string(body.size()).append(HEAD_END).append(body);
}

}  // namespace oska::fakes
