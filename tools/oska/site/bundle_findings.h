#pragma once

#include <string>
#include <vector>

#include "oska/resources/bundle.h"

namespace oska::tool {

/// Something in a valid bundle that its author may not expect.
struct Finding {
    std::string path;     ///< "buildings[0].levels[2].wards[5].rssi"
    std::string kind;     ///< for programs, one of those that the functions below list
    std::string message;  ///< for people
};

template <class Visit>
void fields(Visit& f, Finding& finding) {
    f("path", finding.path);
    f("kind", finding.kind);
    f("message", finding.message);
}

/// In document order:
///   level-id-twice      the later of two levels with one id
///   scale-zero          a map image that puts all wards of its level in one place
///   name-alike          a ward whose name, normalised, an earlier ward has
///   unreachable         a threshold outside -100 to -40 dBm, the range of a live scan
///   no-coordinates      a ward without x or y, which counts as 0 (Dapo)
///   link-dropped        a content link that is no URL (Dapo)
/// Pure functions.
[[nodiscard]] std::vector<Finding> findingsIn(const PelioBundle& bundle);
[[nodiscard]] std::vector<Finding> findingsIn(const DapoBundle& bundle);

}  // namespace oska::tool
