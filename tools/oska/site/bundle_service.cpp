#include "tools/oska/site/bundle_service.h"

#include <cstddef>
#include <optional>
#include <vector>

#include "oska/json/json.h"

namespace oska::tool {

namespace json = json;

namespace {

struct AnyValue {};

bool read(json::Reader& reader, AnyValue&) { return reader.skipValue(); }

struct WardOutline {
    std::optional<AnyValue> contents;
};

struct LevelOutline {
    std::vector<WardOutline> wards;
};

struct BuildingOutline {
    std::vector<LevelOutline> levels;
};

struct BundleOutline {
    std::vector<BuildingOutline> buildings;
};

template <class Visit>
void fields(Visit& f, WardOutline& ward) {
    f("contents", ward.contents);
}

template <class Visit>
void fields(Visit& f, LevelOutline& level) {
    f("wards", level.wards);
}

template <class Visit>
void fields(Visit& f, BuildingOutline& building) {
    f("levels", building.levels);
}

template <class Visit>
void fields(Visit& f, BundleOutline& bundle) {
    f("buildings", bundle.buildings);
}

struct Votes {
    std::size_t dapo = 0;
    std::size_t pelio = 0;
};

Votes countVotes(const BundleOutline& bundle) {
    Votes votes;
    for (const auto& building : bundle.buildings) {
        for (const auto& level : building.levels) {
            for (const auto& ward : level.wards) ++(ward.contents ? votes.dapo : votes.pelio);
        }
    }
    return votes;
}

}  // namespace

OskaService serviceOfBundle(std::string_view document) {
    json::Reader reader(document);
    BundleOutline outline;
    // What was read before a fault still votes.
    static_cast<void>(json::read(reader, outline));
    const auto votes = countVotes(outline);
    return votes.dapo > 0 && votes.dapo >= votes.pelio ? OskaService::dapo : OskaService::pelio;
}

}  // namespace oska::tool
