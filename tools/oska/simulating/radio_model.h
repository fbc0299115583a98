#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "oska/platform/quenlo_common.h"
#include "tools/oska/simulating/planned_walk.h"
#include "tools/oska/site/site.h"

namespace oska::tool {

/// Computes what a phone hears of a site's wards.
///
/// The strength of a ward falls with the logarithm of its distance and with each floor and outer wall in
/// between. Shadowing stands for furniture and inner walls: it differs from place to place around each ward
/// and never changes. Fading is new with each reading. Some readings are missed, weak ones more often. A
/// reading below the range of a live scan is not heard, one above the range gets the range's upper end.
///
/// All of it is a pure function of site, route, seed and the number of the sample. Strengths are rounded to a
/// tenth, so that the last bits of the C library's logarithm, which differ from machine to machine, do not
/// show.
class RadioModel {
public:
    RadioModel(const Site& site, const GroundPlan& ground, const Route& route, std::uint64_t seed);

    /// dBm by ward name, to a tenth. Of wards that share a name the stronger is heard.
    [[nodiscard]] platform::ReceivedForce::Strengths hear(const Position& phone, std::uint64_t sample) const;

private:
    struct Source {
        const SiteWard* ward;
        Point3 point;
        std::uint64_t key;
    };

    [[nodiscard]] std::optional<double> reading(const Source& source, const Position& phone,
                                                std::uint64_t sample) const;
    [[nodiscard]] bool isOutOfEarshot(const Source& source, const Position& phone) const;
    [[nodiscard]] double meanStrength(const Source& source, const Position& phone) const;
    [[nodiscard]] double shadowing(const Source& source, const Position& phone) const;
    [[nodiscard]] double chanceToMiss(double strength) const;

    const Site& site_;
    const GroundPlan& ground_;
    double floorHeight_;
    double strengthAtOneMetre_;
    double exponent_;
    double shadowing_;
    double shadowingLength_;
    double fading_;
    double floorLoss_;
    double wallLoss_;
    double missed_;
    std::uint64_t seed_;
    std::vector<Source> sources_;  // the wards that have a place
};

}  // namespace oska::tool
