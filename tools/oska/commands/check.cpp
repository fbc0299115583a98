#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "oska/json/json.h"
#include "oska/resources/bundle.h"
#include "oska/text/one_line.h"
#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/input_file.h"
#include "tools/oska/cli/interruption.h"
#include "tools/oska/cli/wording.h"
#include "tools/oska/commands/commands.h"
#include "tools/oska/site/bundle_findings.h"
#include "tools/oska/site/bundle_service.h"

namespace oska::tool {
namespace {

constexpr auto ABOUT = "Check bundles: do they decode, and what in them would surprise their author?";

constexpr auto MORE =
    R"(Of a bundle that does not decode: where and why, what was expected and what stood there. Of one that does: names
that normalise alike, wards without coordinates, thresholds that no sample can reach (outside -100 to -40 dBm),
content links that are dropped, level ids used twice, levels with scale 0.

Each finding is one line: the file, the place in it, the problem. Why a bundle does not decode is written to standard
error; with --json it is part of the report.
Exit status 0 when all bundles decode, with or without findings; 2 when one does not.

Example: oska check --kind dapo site/12/dapo.json site/13/dapo.json)";

struct Options {
    std::string kind;
    std::vector<std::string> files;
    bool json = false;
};

/// Why a bundle does not decode. For a file that cannot be read there is only the message.
struct Fault {
    std::optional<std::int64_t> line;
    std::optional<std::string> path;
    std::optional<std::string> expected;
    std::optional<std::string> found;
    std::string message;
};

template <class Visit>
void fields(Visit& f, Fault& fault) {
    f("line", fault.line);
    f("path", fault.path);
    f("expected", fault.expected);
    f("found", fault.found);
    f("message", fault.message);
}

struct FileReport {
    std::string file;
    std::optional<std::string> kind;
    bool decodes = false;
    std::optional<Fault> error;
    std::vector<Finding> findings;
};

template <class Visit>
void fields(Visit& f, FileReport& report) {
    f("file", report.file);
    f("kind", report.kind);
    f("decodes", report.decodes);
    f("error", report.error);
    f("findings", report.findings);
}

struct Report {
    std::vector<FileReport> files;
};

template <class Visit>
void fields(Visit& f, Report& report) {
    f("files", report.files);
}

Fault faultOf(const json::DecodeError& error) {
    return {.line = static_cast<std::int64_t>(error.line),
            .path = error.path,
            .expected = error.expected,
            .found = error.found,
            .message = faultText(error)};
}

template <class Bundle>
void examine(FileReport& report, const std::string& document) {
    const auto bundle = json::decode<Bundle>(document);
    report.decodes = bundle.hasValue();
    if (bundle) {
        report.findings = findingsIn(*bundle);
    } else {
        report.error = faultOf(bundle.error());
    }
}

FileReport check(const std::string& file, const std::string& kind) {
    FileReport report{.file = file, .kind = {}, .error = {}, .findings = {}};
    const auto document = readInput(file);
    if (!document) {
        report.error =
            Fault{.line = {}, .path = {}, .expected = {}, .found = {}, .message = document.error().problem};
        return report;
    }
    report.kind = kind.empty() ? std::string(rawValue(serviceOfBundle(*document))) : kind;
    if (*report.kind == rawValue(OskaService::dapo)) {
        examine<DapoBundle>(report, *document);
    } else {
        examine<PelioBundle>(report, *document);
    }
    return report;
}

void printLine(std::string line) {
    line = text::onOneLine(line) + '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

/// The place and the reason. The message of a fault without a line names the file itself.
std::string errorLine(const FileReport& report) {
    const auto& error = *report.error;
    return error.line ? report.file + ":" + std::to_string(*error.line) + ": " + error.message
                      : error.message;
}

void printForPeople(const FileReport& report) {
    if (report.error) complain(errorLine(report));
    if (!report.kind) return;
    printLine(report.file + ": " + (report.decodes ? "decodes as a " : "does not decode as a ") +
              *report.kind + " bundle");
    for (const auto& finding : report.findings) {
        printLine(report.file + ": " + finding.path + ": " + finding.message);
    }
}

ExitStatus check(const Options& options) {
    Report all;
    auto status = ExitStatus::done;
    for (const auto& file : options.files) {
        auto report = check(file, options.kind);
        if (Interruption::requested()) return ExitStatus::interrupted;
        if (!report.decodes) status = ExitStatus::badInput;
        if (!options.json) printForPeople(report);
        if (options.json) all.files.push_back(std::move(report));
    }
    if (options.json) printLine(*json::encode(all, json::Slashes::plain));
    return status;
}

}  // namespace

void addCheck(CLI::App& program, ExitStatus& status) {
    auto* const command = program.add_subcommand("check", ABOUT);
    const auto options = std::make_shared<Options>();
    command->footer(MORE);
    command
        ->add_option("--kind", options->kind,
                     "Which service the bundles are for: pelio or dapo. Left out, their wards tell:\n"
                     "those of Dapo have contents, those of Pelio have not.\n  --kind pelio")
        ->check(CLI::IsMember({"pelio", "dapo"}))
        ->type_name("KIND");
    command->add_option("BUNDLE_FILE", options->files, "The bundles; - is standard input.")
        ->required()
        ->type_name("");
    command->add_flag(
        "--json", options->json,
        "Print one JSON object: {\"files\": [{file, kind, decodes, error, findings}]}.\n  --json");
    command->callback([options, &status] {
        Interruption::listen();
        status = check(*options);
    });
}

}  // namespace oska::tool
