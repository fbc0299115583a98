#pragma once

#include <QSize>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace viewer {

/// The command line. Threads and lifetime: a value.
struct Options {
    std::string siteFolder;
    std::string recording;
    std::optional<std::int64_t> sectorId;
    std::optional<std::string> screenshot;  ///< file to write, PNG; nullopt: show a window
    double atSeconds = 0;                   ///< time in the walk at which the picture is taken
    std::optional<std::int64_t> levelId;    ///< nullopt: the level of the phone
    QSize size{1280, 800};                  ///< of the window, pixels
    bool tap = false;                       ///< tap the map before the picture is taken
    bool log = false;                       ///< the kit's log goes to standard output
};

/// Returns the options, or the exit status of a program that ends here; help or complaint is printed already.
[[nodiscard]] std::variant<Options, int> parseOptions(int argc, char** argv);

}  // namespace viewer
