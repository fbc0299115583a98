#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/json/json.h"

// The records that the tests of JSON decode and encode, and short forms for doing so.
namespace oska::json {

struct Colour {
    std::string name;

    bool operator==(const Colour&) const = default;
};

struct Door {
    static constexpr std::string_view TYPE_NAME = "Door";

    std::int64_t id = 0;
    std::string name;
    std::optional<double> width;
    std::vector<std::string> tags;

    bool operator==(const Door&) const = default;
};

template <class Visit>
void fields(Visit& f, Door& door) {
    f("id", door.id);
    f("name", door.name);
    f("width", door.width);
    f("tags", door.tags);
}

struct House {
    static constexpr std::string_view TYPE_NAME = "House";

    std::vector<Door> doors;
    std::map<std::string, double> rooms;
    std::optional<Colour> colour;
    bool open = false;

    bool operator==(const House&) const = default;
};

template <class Visit>
void fields(Visit& f, House& house) {
    f("doors", house.doors);
    f("rooms", house.rooms);
    f("colour", house.colour);
    f("open", house.open);
}

struct Nothing {};

template <class Visit>
void fields(Visit&, Nothing&) {}

}  // namespace oska::json

template <>
struct oska::JsonText<oska::json::Colour> {
    static constexpr std::string_view EXPECTED = "a colour";

    // Decodes a second document while the first is being decoded.
    static std::optional<json::Colour> parse(std::string_view text) {
        auto name = json::decode<std::string>('"' + std::string(text) + '"');
        if (!name || *name == "none") return {};
        return json::Colour{*name};
    }

    static std::string_view print(const json::Colour& colour) { return colour.name; }
};

namespace oska::json {

template <class Value>
std::string decodingErrorOf(std::string_view text) {
    const auto result = decode<Value>(text);
    return result ? "none" : result.error().message();
}

// The error of a document that is only skipped, as the value of an unknown key is.
inline std::string syntaxErrorOf(std::string_view text) {
    Reader reader(text);
    if (reader.skipValue() && reader.finish()) return "none";
    return reader.takeError().message();
}

template <class Value>
std::string encodingOf(const Value& value) {
    const auto text = encode(value);
    return text ? *text : text.error().message();
}

}  // namespace oska::json
