// The program that `oska serve` starts. It is a separate program because loading the server's library would
// cost every other command a millisecond.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "tools/oska/cli/command_line.h"
#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/exit_status.h"
#include "tools/oska/cli/interruption.h"
#include "tools/oska/cli/memory_guard.h"
#include "tools/oska/cli/option_values.h"
#include "tools/oska_serve/site_server.h"

using oska::tool::ExitStatus;
using oska::tool::Interruption;
using oska::tool::SiteServer;

namespace {

constexpr auto ABOUT = "Serve a folder as a site, for development and trials.";

constexpr auto MORE =
    R"(SITE_FOLDER holds a folder for each sector, named by its id, with the sector's bundles:
  site/12/pelio.json  site/12/dapo.json
Map images lie wherever the bundles say; GET /12/b1.png is site/12/b1.png. Only JSON files and images are served, and
nothing outside of the folder. Files are read for each request, so a change shows at once; a bundle's
version is a digest of its content.

Uploaded samples are checked and, with --uploads, appended to a file, one line each: a recording, ready for replay.

Each request is a line on standard error. Ctrl-C ends the server. Port 5050 on loopback is where the kit looks by
itself, so `oska run pelio --sector 12` finds this server.

Example: oska serve site --uploads walk.jsonl)";

void addOptions(CLI::App& command, SiteServer::Options& options) {
    command.add_option("SITE_FOLDER", options.folder, "The folder to serve.")->required()->type_name("");
    command
        .add_option("--port", options.port,
                    "The port to listen on (5050); 0 is any that is free.\n  --port 8080")
        ->transform(oska::tool::decimalInteger())
        ->check(CLI::Range(0, 65535))
        ->type_name("N");
    command
        .add_option("--bind", options.address,
                    "The address to listen on (127.0.0.1, so that only this machine reaches it).\n"
                    "  --bind 0.0.0.0")
        ->type_name("ADDRESS");
    auto* const certificate = command
                                  .add_option("--tls-cert", options.tlsCertificate,
                                              "Speak https, with this certificate (PEM).\n"
                                              "  --tls-cert cert.pem --tls-key key.pem")
                                  ->type_name("FILE");
    auto* const key =
        command.add_option("--tls-key", options.tlsKey, "The certificate's key (PEM).")->type_name("FILE");
    certificate->needs(key);
    key->needs(certificate);
    command
        .add_option(
            "--require-token", options.requiredToken,
            "Refuse bundle requests and uploads that do not bring this token.\n  --require-token secret")
        ->type_name("TEXT");
    command
        .add_option(
            "--uploads", options.uploads,
            "Append uploaded samples to this file; left out, they are dropped. It must not be one that the "
            "server reads.\n  --uploads walk.jsonl")
        ->type_name("FILE");
}

ExitStatus serve(const SiteServer::Options& options) {
    Interruption::listen();
    const auto server = SiteServer::start(options);
    if (!server) {
        oska::tool::complain("oska: " + server.error().problem);
        return ExitStatus::badInput;
    }
    oska::tool::complain("listening on " + (*server)->url());
    Interruption::wait();
    return ExitStatus::interrupted;
}

ExitStatus run(int argc, char** argv) {
    CLI::App program(ABOUT, "oska serve");
    program.footer(MORE);
    SiteServer::Options options{.port = 5050};
    addOptions(program, options);
    const auto ended = oska::tool::parseCommandLine(program, argc, argv);
    return ended ? *ended : serve(options);
}

}  // namespace

int main(int argc, char** argv) {
    return static_cast<int>(oska::tool::runGuarded([&] { return run(argc, argv); }));
}
