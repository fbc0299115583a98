// Decodes arbitrary bytes. It must not crash, an error must be one line, and a decoded value must be the same
// after encoding and decoding it again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/json/json.h"
#include "oska/resources/bundle.h"

namespace {

namespace json = oska::json;

// Has the types that the records of bundles do not have.
struct Sample {
    std::int64_t mobile_time = 0;
    std::map<std::string, double> rfs;
    std::optional<bool> flag;
    std::vector<std::optional<std::string>> names;

    bool operator==(const Sample&) const = default;
};

template <class Visit>
void fields(Visit& f, Sample& sample) {
    f("id", sample.mobile_time);
    f("map_image", sample.rfs);
    f("x", sample.flag);
    f("buildings", sample.names);
}

void require(bool holds) {
    if (!holds) std::abort();
}

void requireOneLine(std::string_view message) {
    for (const char c : message) require(static_cast<unsigned char>(c) >= 0x20);
}

template <class Value>
bool decodeAndCompare(std::string_view text) {
    const auto decoded = json::decode<Value>(text);
    if (!decoded) {
        requireOneLine(decoded.error().message());
        return false;
    }
    const auto encoded = json::encode(*decoded);
    require(encoded.hasValue());
    const auto again = json::decode<Value>(*encoded);
    require(again && *again == *decoded);
    require(*json::encode(*again) == *encoded);
    return true;
}

bool isDocument(std::string_view text) {
    json::Reader reader(text);
    return reader.skipValue() && reader.finish();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const bool isJson = isDocument(text);
    const auto check = [&](bool isDecoded) { require(isJson || !isDecoded); };
    check(decodeAndCompare<oska::DapoBundle>(text));
    check(decodeAndCompare<oska::PelioBundle>(text));
    check(decodeAndCompare<oska::LevelMapImage>(text));
    check(decodeAndCompare<Sample>(text));
    check(decodeAndCompare<std::vector<double>>(text));
    check(decodeAndCompare<std::vector<std::int64_t>>(text));
    check(decodeAndCompare<std::vector<std::string>>(text));
    return 0;
}
