#include "tools/oska/site/bundle_findings.h"

#include <cstdint>
#include <map>
#include <unordered_map>
#include <utility>

#include "oska/foundation/ward_name.h"
#include "oska/json/json.h"
#include "oska/platform/quenlo_common.h"
#include "oska/url/url.h"
#include "tools/oska/cli/wording.h"

namespace oska::tool {
namespace {

using platform::LIVE_SCAN;

std::string rangeOfLiveScan() {
    return "a live scan hears " + std::to_string(LIVE_SCAN.minRssiThreshold) + " to " +
           std::to_string(LIVE_SCAN.maxRssiThreshold) + " dBm";
}

std::string decimal(double value) {
    std::string text;
    if (!json::appendReal(text, value)) text = "beyond all numbers";
    return text;
}

std::string element(const std::string& parent, std::string_view array, std::size_t index) {
    return parent + (parent.empty() ? "" : ".") + std::string(array) + "[" + std::to_string(index) + "]";
}

/// One pass over a bundle of either kind.
class BundleCheck {
public:
    template <class Ward>
    std::vector<Finding> inspect(const Bundle<Ward>& bundle) {
        for (std::size_t i = 0; i < bundle.buildings.size(); ++i) {
            const auto path = element("", "buildings", i);
            const auto& levels = bundle.buildings[i].levels;
            for (std::size_t j = 0; j < levels.size(); ++j)
                inspectLevel(element(path, "levels", j), levels[j]);
        }
        return std::move(findings_);
    }

private:
    template <class Ward>
    void inspectLevel(const std::string& path, const Level<Ward>& level) {
        checkId(path, level.id);
        checkScale(path + ".map_image.scale_x", level.map_image.scale_x);
        checkScale(path + ".map_image.scale_y", level.map_image.scale_y);
        for (std::size_t i = 0; i < level.wards.size(); ++i) {
            const auto wardPath = element(path, "wards", i);
            checkName<Ward>(wardPath, level.wards[i].name);
            checkCoordinates(wardPath, level.wards[i]);
            checkThreshold(wardPath, static_cast<double>(level.wards[i].rssi));
            checkLinks(wardPath, level.wards[i]);
        }
    }

    void checkId(const std::string& path, std::int64_t id) {
        const auto [first, isNew] = levelIds_.try_emplace(id, path);
        if (isNew) return;
        add(path + ".id", "level-id-twice",
            "level id " + std::to_string(id) + " is that of " + first->second +
                ", too; the map image of the last such level counts for all");
    }

    void checkScale(const std::string& path, double scale) {
        if (scale == 0) add(path, "scale-zero", "scale 0 puts all wards of the level in one place");
    }

    template <class Ward>
    void checkName(const std::string& path, const std::string& name) {
        const auto [first, isNew] = names_.try_emplace(normalizeWardName(name), WardName{path, name});
        if (isNew) return;
        const bool replaces = std::is_same_v<Ward, DapoLevelWard>;
        add(path + ".name", "name-alike",
            inQuotes(name) + " and " + inQuotes(first->second.name) + " at " + first->second.path +
                " are one name" +
                (replaces ? "; only the last such ward can be detected"
                          : "; a reading of it counts for every such ward"));
    }

    static void checkCoordinates(const std::string&, const PelioLevelWard&) {}

    void checkCoordinates(const std::string& path, const DapoLevelWard& ward) {
        if (ward.x && ward.y) return;
        const auto missing = ward.x ? "y" : ward.y ? "x" : "x and y";
        add(path, "no-coordinates", inQuotes(ward.name) + " has no " + missing + ", which counts as 0");
    }

    void checkThreshold(const std::string& path, double rssi) {
        if (rssi > LIVE_SCAN.maxRssiThreshold) {
            add(path + ".rssi", "unreachable",
                "no sample reaches " + decimal(rssi) + " dBm: " + rangeOfLiveScan());
        } else if (rssi < LIVE_SCAN.minRssiThreshold) {
            add(path + ".rssi", "unreachable",
                "no sample is as weak as " + decimal(rssi) +
                    " dBm, so every reading counts: " + rangeOfLiveScan());
        }
    }

    static void checkLinks(const std::string&, const PelioLevelWard&) {}

    void checkLinks(const std::string& path, const DapoLevelWard& ward) {
        for (std::size_t i = 0; i < ward.contents.size(); ++i) {
            const auto& url = ward.contents[i].url;
            if (Url::parse(url)) continue;
            add(element(path, "contents", i) + ".url", "link-dropped",
                inQuotes(url) + " is no URL; the link is dropped");
        }
    }

    void add(std::string path, std::string kind, std::string message) {
        findings_.push_back({std::move(path), std::move(kind), std::move(message)});
    }

    struct WardName {
        std::string path;
        std::string name;
    };

    std::map<std::int64_t, std::string> levelIds_;     // the first level of each id
    std::unordered_map<std::string, WardName> names_;  // the first ward of each normalised name
    std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> findingsIn(const PelioBundle& bundle) { return BundleCheck().inspect(bundle); }
std::vector<Finding> findingsIn(const DapoBundle& bundle) { return BundleCheck().inspect(bundle); }

}  // namespace oska::tool
