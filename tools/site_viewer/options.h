#pragma once

#include <QSize>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace viewer {

struct Options {
    std::string siteFolder;
    std::string recording;
    std::optional<std::int64_t> sectorId;
    std::optional<std::string> screenshot;  ///< PNG file
    double atSeconds = 0;                   ///< of the walk
    std::optional<std::int64_t> levelId;    ///< none: the phone's
    QSize size{1280, 800};
    bool tap = false;
    bool log = false;
};

/// The options, or the status with which the program ends; what there is to say has been printed.
[[nodiscard]] std::variant<Options, int> parseOptions(int argc, char** argv);

}  // namespace viewer
