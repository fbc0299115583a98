#pragma once

#include <openssl/ssl.h>

#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "oska/platform/http_session.h"
#include "tests/fakes/test_identity.h"

namespace oska::fakes {

/// One request as it stood on the wire.
struct WireRequest {
    std::string method;
    std::string target;
    std::vector<platform::HttpHeader> headers;
    std::string body;

    /// Each value of the headers with this name, in any case of letters.
    [[nodiscard]] std::vector<std::string> values(std::string_view name) const;
};

/// The server's end of one connection. Threads: the thread of its handler.
class WireConnection {
public:
    using OnRequest = std::function<void(const WireRequest&)>;

    WireConnection(int socket, SSL* tls, OnRequest onRequest)
        : socket_(socket), tls_(tls), onRequest_(std::move(onRequest)) {}

    /// The next request; nullopt when the client has closed the connection.
    [[nodiscard]] std::optional<WireRequest> receive();
    void send(std::string_view bytes);
    /// Waits until the client has closed the connection.
    void awaitHangUp();
    /// Waits; false when the client sent something or closed the connection before the time was over.
    [[nodiscard]] bool pause(int milliseconds);

private:
    [[nodiscard]] bool readMore();

    const int socket_;
    SSL* const tls_;
    const OnRequest onRequest_;
    std::string unread_;
};

/// A server on loopback, on a free port, that sends exactly the bytes that the test gives it; over TLS when
/// it has an identity. Each connection has a thread; destroying the server ends them all.
class LoopbackServer {
public:
    using Handler = std::function<void(WireConnection&)>;
    using Answer = std::function<std::string(const WireRequest&)>;

    /// Calls `handler` for each connection, on the thread of the connection; it closes when `handler`
    /// returns.
    LoopbackServer(Handler handler, const TestIdentity* identity = nullptr,
                   const char* address = "127.0.0.1");
    /// Sends the answer to each request and keeps the connection.
    explicit LoopbackServer(Answer answer, const TestIdentity* identity = nullptr)
        : LoopbackServer(answering(std::move(answer)), identity) {}
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// False when the machine has no such address.
    [[nodiscard]] bool isListening() const { return port_ != 0; }
    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] std::string url(const std::string& path, const std::string& host = "127.0.0.1") const;
    [[nodiscard]] std::vector<WireRequest> requests() const;
    [[nodiscard]] std::size_t connections() const;

    [[nodiscard]] static Handler answering(Answer answer);

private:
    struct Peer {
        int socket;
        std::thread thread;
    };

    void listenOn(const char* address);
    void acceptAll();
    void serve(int socket);

    const Handler handler_;
    SSL_CTX* tls_ = nullptr;
    int listener_ = -1;
    int port_ = 0;
    mutable std::mutex mutex_;
    std::list<Peer> peers_;
    std::vector<WireRequest> requests_;
    std::thread acceptor_;
};

/// "HTTP/1.1 200 OK", the headers, the length, and the body.
[[nodiscard]] std::string wireReply(int status, std::string_view body = "",
                                    const std::vector<platform::HttpHeader>& headers = {});

}  // namespace oska::fakes
