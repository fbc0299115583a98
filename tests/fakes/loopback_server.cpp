#include "tests/fakes/loopback_server.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <csignal>
#include <cstring>
#include <utility>

#include "oska/text/text.h"

namespace oska::fakes {
namespace {

constexpr std::string_view HEAD_END = "\r\n\r\n";

std::pair<std::string_view, std::string_view> cut(std::string_view text, std::string_view at) {
    const auto found = text.find(at);
    if (found == std::string_view::npos) return {text, {}};
    return {text.substr(0, found), text.substr(found + at.size())};
}

WireRequest parseHead(std::string_view head) {
    auto [first, rest] = cut(head, "\r\n");
    WireRequest request;
    const auto [method, afterMethod] = cut(first, " ");
    request.method = method;
    request.target = cut(afterMethod, " ").first;
    while (!rest.empty()) {
        const auto [line, next] = cut(rest, "\r\n");
        const auto [name, value] = cut(line, ":");
        request.headers.push_back(
            {std::string(name), std::string(value.substr(value.starts_with(' ') ? 1 : 0))});
        rest = next;
    }
    return request;
}

std::size_t bodySize(const WireRequest& request) {
    std::size_t size = 0;
    for (const auto& text : request.values("Content-Length")) {
        std::from_chars(text.data(), text.data() + text.size(), size);
    }
    return size;
}

/// Of a numeric IPv4 or IPv6 address, port 0.
std::pair<sockaddr_storage, socklen_t> socketAddress(const char* address) {
    sockaddr_storage storage{};
    sockaddr_in v4{};
    sockaddr_in6 v6{};
    if (::inet_pton(AF_INET, address, &v4.sin_addr) == 1) {
        v4.sin_family = AF_INET;
        std::memcpy(&storage, &v4, sizeof v4);
        return {storage, sizeof v4};
    }
    ::inet_pton(AF_INET6, address, &v6.sin6_addr);
    v6.sin6_family = AF_INET6;
    std::memcpy(&storage, &v6, sizeof v6);
    return {storage, sizeof v6};
}

SSL_CTX* tlsContext(const TestIdentity& identity) {
    auto* context = SSL_CTX_new(TLS_server_method());
    SSL_CTX_use_certificate(context, identity.certificate());
    SSL_CTX_use_PrivateKey(context, identity.key());
    return context;
}

void blockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
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

bool WireConnection::readUntil(std::size_t size) {
    while (unread_.size() < size) {
        if (!readMore()) return false;
    }
    return true;
}

std::optional<std::size_t> WireConnection::readHead() {
    for (;;) {
        const auto end = unread_.find(HEAD_END);
        if (end != std::string::npos) return end;
        if (!readMore()) return std::nullopt;
    }
}

std::optional<WireRequest> WireConnection::receive() {
    const auto headSize = readHead();
    if (!headSize) return std::nullopt;
    auto request = parseHead(std::string_view(unread_).substr(0, *headSize));
    const auto bodyBegin = *headSize + HEAD_END.size();
    const auto end = bodyBegin + bodySize(request);
    if (!readUntil(end)) return std::nullopt;
    request.body = unread_.substr(bodyBegin, end - bodyBegin);
    unread_.erase(0, end);
    onRequest_(request);
    return request;
}

void WireConnection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto sent = tls_ ? SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size()))
                               : static_cast<int>(::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL));
        if (sent <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
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
    auto [storage, size] = socketAddress(address);
    listener_ = ::socket(storage.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    auto* generic = reinterpret_cast<sockaddr*>(&storage);
    if (::bind(listener_, generic, size) != 0 || ::listen(listener_, SOMAXCONN) != 0) return;
    ::getsockname(listener_, generic, &size);
    sockaddr_in v4{};  // the port stands at the same place in both kinds of address
    std::memcpy(&v4, &storage, sizeof v4);
    port_ = ntohs(v4.sin_port);
}

void LoopbackServer::acceptAll() {
    blockSignals();
    for (std::size_t number = 0;; ++number) {
        const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) return;
        const std::lock_guard lock(mutex_);
        peers_.push_back({socket, std::thread([this, socket, number] { serve(socket, number); })});
    }
}

void LoopbackServer::serve(int socket, std::size_t number) {
    SSL* tls = tls_ ? SSL_new(tls_) : nullptr;
    if (tls) SSL_set_fd(tls, socket);
    WireConnection connection(socket, tls, [&](WireRequest& request) { note(request, number); });
    if (!tls || SSL_accept(tls) == 1) handler_(connection);
    if (tls) SSL_shutdown(tls);
    SSL_free(tls);
    ::shutdown(socket, SHUT_RDWR);
}

void LoopbackServer::note(WireRequest& request, std::size_t connection) {
    request.connection = connection;
    const std::lock_guard lock(mutex_);
    requests_.push_back(request);
}

std::string LoopbackServer::url(std::string_view path, std::string_view host) const {
    return std::string(tls_ ? "https://" : "http://")
        .append(host)
        .append(":")
        .append(std::to_string(port_))
        .append(path);
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
    return text.append("Content-Length: ").append(std::to_string(body.size())).append(HEAD_END).append(body);
}

}  // namespace oska::fakes
