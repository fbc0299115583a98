#include "tools/site_viewer/options.h"

#include <CLI/CLI.hpp>
#include <QRegularExpression>

#include "tools/oska/cli/command_line.h"
#include "tools/oska/cli/option_values.h"
#include "tools/site_viewer/window.h"

namespace viewer {
namespace {

constexpr auto ABOUT =
    R"(Shows a site and a walk through it: the map, the wards, the phone, and the content overlay that comes and goes. Both
services run for real, against a development server inside this program.

Examples: site_viewer examples/riverside examples/riverside/walks/museum_visit.jsonl
          site_viewer site walk.jsonl --sector 12 --screenshot picture.png --at 95.5)";

constexpr QSize LARGEST_SIZE{10'000, 10'000};

/// Reads "390x844"; nullopt when the text is not a size that the window can have.
std::optional<QSize> sizeFrom(const std::string& text) {
    static const QRegularExpression form("^(\\d{1,5})x(\\d{1,5})$");
    const auto match = form.match(QString::fromStdString(text));
    if (!match.hasMatch()) return std::nullopt;
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    return size.expandedTo(LEAST_SIZE).boundedTo(LARGEST_SIZE) == size ? std::optional(size) : std::nullopt;
}

void addPictureOptions(CLI::App& program, Options& options) {
    auto* const screenshot =
        program
            .add_option(
                "--screenshot", options.screenshot,
                "Writes a picture of the window and ends; needs no display.\n  --screenshot picture.png")
            ->type_name("FILE");
    program
        .add_option("--at", options.atSeconds,
                    "The second of the walk at which the picture is taken, or its end (0).\n  --at 95.5")
        ->check(oska::tool::seconds())
        ->type_name("SECONDS")
        ->needs(screenshot);
    program.add_flag("--tap", options.tap, "Taps the middle of the map before the picture is taken.")
        ->needs(screenshot);
}

void addOptions(CLI::App& program, Options& options) {
    program
        .add_option("site", options.siteFolder, "The folder of the site: N/pelio.json, N/dapo.json, images.")
        ->required()
        ->type_name("FOLDER");
    program.add_option("recording", options.recording, "The walk, JSON Lines.")
        ->required()
        ->type_name("FILE");
    program
        .add_option("--sector", options.sectorId, "The sector N, when the folder has several.\n  --sector 12")
        ->transform(oska::tool::decimalInteger())
        ->type_name("N");
    program
        .add_option("--level", options.levelId,
                    "The level to show, by id; else that of the phone.\n  --level 1102")
        ->transform(oska::tool::decimalInteger())
        ->type_name("ID");
    program
        .add_option_function<std::string>(
            "--size",
            [&options](const std::string& text) {
                const auto size = sizeFrom(text);
                if (!size)
                    throw CLI::ValidationError(
                        "--size", "\"" + text + "\" is no WIDTHxHEIGHT from 320x600 to 10000x10000");
                options.size = *size;
            },
            "The window's size (1280x800).\n  --size 390x844")
        ->type_name("WxH");
    program.add_flag("--log", options.log, "Writes the kit's own log to standard output.");
}

}  // namespace

std::variant<Options, int> parseOptions(int argc, char** argv) {
    CLI::App program(ABOUT, "site_viewer");
    Options options;
    addOptions(program, options);
    addPictureOptions(program, options);
    if (const auto end = oska::tool::parseCommandLine(program, argc, argv)) return static_cast<int>(*end);
    return options;
}

}  // namespace viewer
