#include "tools/oska_serve/site_server.h"

#include <httplib.h>
#include <netdb.h>
#include <openssl/err.h>
#include <openssl/ssl.h>

#include <cerrno>
#include <csignal>
#include <future>
#include <system_error>
#include <thread>
#include <utility>

#include "tools/oska_serve/request_threads.h"
#include "tools/oska_serve/site_answers.h"

namespace oska::tool {
namespace {

// How long the stop of the server waits for idle clients.
constexpr int KEEP_ALIVE_SECONDS = 1;
constexpr std::size_t REQUESTS_PER_CONNECTION = 1000;

/// Why OpenSSL's last call failed.
std::string opensslProblem() {
    const auto error = ERR_peek_error();
    ERR_clear_error();
    if (ERR_SYSTEM_ERROR(error)) return std::generic_category().message(ERR_GET_REASON(error));
    const auto* const reason = ERR_reason_error_string(error);
    return reason ? reason : "unknown reason";
}

std::optional<std::string> takeIdentity(SSL_CTX& context, const SiteServer::Options& options) {
    SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION);
    if (SSL_CTX_use_certificate_chain_file(&context, options.tlsCertificate.c_str()) != 1) {
        return options.tlsCertificate + ": cannot be used as a certificate: " + opensslProblem();
    }
    if (SSL_CTX_use_PrivateKey_file(&context, options.tlsKey.c_str(), SSL_FILETYPE_PEM) != 1) {
        return options.tlsKey + ": cannot be used as the key of " + options.tlsCertificate + ": " +
               opensslProblem();
    }
    return std::nullopt;
}

using ServerOrNot = Result<std::unique_ptr<httplib::Server>, NotServing>;

ServerOrNot makeTlsServer(const SiteServer::Options& options) {
    std::optional<std::string> problem;
    auto server = std::make_unique<httplib::SSLServer>([&](SSL_CTX& context) {
        problem = takeIdentity(context, options);
        return !problem;
    });
    if (problem) return NotServing{*problem};
    if (!server->is_valid()) return NotServing{"TLS cannot be set up: " + opensslProblem()};
    return std::unique_ptr<httplib::Server>(std::move(server));
}

ServerOrNot makeServer(const SiteServer::Options& options) {
    if (options.tlsCertificate.empty()) return std::make_unique<httplib::Server>();
    return makeTlsServer(options);
}

void configure(httplib::Server& server) {
    server.set_tcp_nodelay(true);
    server.set_keep_alive_timeout(KEEP_ALIVE_SECONDS);
    server.set_keep_alive_max_count(REQUESTS_PER_CONNECTION);
    // By default the library would share the port with another program.
    server.set_socket_options([](int socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
}

std::optional<std::string> addressProblem(const std::string& address) {
    addrinfo* found = nullptr;
    const int result = getaddrinfo(address.c_str(), nullptr, nullptr, &found);
    if (result != 0) return gai_strerror(result);
    freeaddrinfo(found);
    return std::nullopt;
}

/// Returns the port, or why the server cannot listen.
Result<int, NotServing> bindTo(httplib::Server& server, const std::string& address, int port) {
    if (const auto problem = addressProblem(address)) return NotServing{address + ": " + *problem};
    errno = 0;
    const int bound = port == 0                            ? server.bind_to_any_port(address)
                      : server.bind_to_port(address, port) ? port
                                                           : -1;
    if (bound > 0) return bound;
    return NotServing{"cannot listen on " + authority(address, port) + ": " +
                      std::generic_category().message(errno)};
}

/// Blocks all signals while it exists; threads that are started meanwhile never receive any.
class NoSignals {
public:
    NoSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &before_);
    }
    ~NoSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;

private:
    sigset_t before_ = {};
};

/// What the server reads the file for; nullopt if it does not read it.
std::optional<std::string> useOf(const FileIdentity& file, const SiteServer::Options& options,
                                 const SiteFolder& folder) {
    if (const auto served = folder.find(file)) return *served + ", which is served";
    for (const auto& pem : {options.tlsCertificate, options.tlsKey}) {
        if (!pem.empty() && identityOf(pem) == file) return pem + ", which TLS needs";
    }
    return std::nullopt;
}

Result<std::unique_ptr<UploadFile>, Unreadable> openUploads(const SiteServer::Options& options,
                                                            const SiteFolder& folder) {
    if (!options.uploads) return std::unique_ptr<UploadFile>();
    return UploadFile::open(*options.uploads, [&](const FileIdentity& file) -> std::optional<std::string> {
        const auto use = useOf(file, options, folder);
        if (!use) return std::nullopt;
        return "uploads cannot go there: it is the file " + *use;
    });
}

}  // namespace

class SiteServer::Running {
public:
    /// Requires: `server` is bound, and `answers` are installed in it. Throws std::system_error when its
    /// threads cannot be started.
    Running(std::unique_ptr<SiteAnswers> answers, std::unique_ptr<httplib::Server> server)
        : answers_(std::move(answers)), server_(std::move(server)) {
        const NoSignals whileStarting;
        auto threads = std::make_unique<RequestThreads>(CPPHTTPLIB_THREAD_POOL_COUNT);
        std::promise<void> accepting;
        // The library asks for it when the server has begun to listen; before, it could not be stopped.
        server_->new_task_queue = [&] {
            auto* const given = threads.release();
            accepting.set_value();
            return given;
        };
        thread_ = std::thread([this] { server_->listen_after_bind(); });
        accepting.get_future().wait();
    }
    ~Running() {
        server_->stop();
        thread_.join();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

private:
    const std::unique_ptr<SiteAnswers> answers_;
    const std::unique_ptr<httplib::Server> server_;
    std::thread thread_;
};

Result<std::unique_ptr<SiteServer>, NotServing> SiteServer::start(const Options& options) {
    auto folder = SiteFolder::open(options.folder);
    if (!folder) return NotServing{folder.error().problem};
    auto server = makeServer(options);
    if (!server) return server.error();
    configure(**server);
    const auto port = bindTo(**server, options.address, options.port);
    if (!port) return port.error();
    auto uploads = openUploads(options, *folder);
    if (!uploads) return NotServing{uploads.error().problem};
    const std::string scheme = options.tlsCertificate.empty() ? "http" : "https";
    auto answers =
        std::make_unique<SiteAnswers>(*std::move(folder), *std::move(uploads), options.requiredToken, scheme);
    answers->installIn(**server, options.reportsAnswers);
    try {
        auto running = std::make_unique<Running>(std::move(answers), *std::move(server));
        return std::unique_ptr<SiteServer>(
            new SiteServer(std::move(running), *port, scheme + "://" + authority(options.address, *port)));
    } catch (const std::system_error& failed) {
        return NotServing{"cannot start a thread: " + failed.code().message()};
    }
}

SiteServer::SiteServer(std::unique_ptr<Running> running, int port, std::string url)
    : running_(std::move(running)), port_(port), url_(std::move(url)) {}

SiteServer::~SiteServer() = default;

}  // namespace oska::tool
