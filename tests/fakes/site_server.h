#pragma once

#include <string>

#include "adapters/virtual/virtual_platform.h"

namespace oska::fakes {

/// Bundle documents small enough to read in a test.
inline const std::string PELIO_DOCUMENT =
    R"({"id":12,"name":"site","operating_system":"iOS","buildings":[{"id":1,
    "name":"main","levels":[{"id":10,"name":"B1","map_image":{"url":"http://h/m.png","image_width":100,
    "image_height":50,"scale_x":0.5,"scale_y":0.5,"offset_x":10,"offset_y":10},"wards":[
    {"id":17,"name":"lobby-a","x":100,"y":40,"rssi":-80.5}]}]}]})";
inline const std::string DAPO_DOCUMENT =
    R"({"id":12,"name":"site","operating_system":"iOS","buildings":[{"id":1,
    "name":"main","levels":[{"id":10,"name":"B1","map_image":{"url":"http://h/m.png","image_width":100,
    "image_height":50,"scale_x":2,"scale_y":2,"offset_x":10,"offset_y":10},"wards":[
    {"id":17,"name":"lobby-a","rssi":-80,"contents":[]}]}]}]})";

/// The descriptor and the bundle of one sector, each an answer that a test may replace.
struct SiteServer {
    explicit SiteServer(virtual_world::MemoryServer& server) {
        server.onRequest([this](const platform::HttpRequest& request) {
            const bool isBundleFile = request.url.absoluteString().starts_with("http://files/");
            return isBundleFile ? bundle : descriptor;
        });
    }

    void publish(const std::string& version, const std::string& document) {
        descriptor = virtual_world::reply(
            200, R"({"url":"http://files/bundle.json","version_id":")" + version + R"(","expires":5})");
        bundle = virtual_world::reply(200, document);
    }

    virtual_world::ScriptedAnswer descriptor = virtual_world::reply(404);
    virtual_world::ScriptedAnswer bundle = virtual_world::reply(404);
};

}  // namespace oska::fakes
