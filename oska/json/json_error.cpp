#include "oska/json/json_error.h"

namespace oska::json {

std::string DecodeError::message() const {
    std::string difference = "expected " + expected + ", found " + found;
    switch (kind) {
        case Kind::malformed:
            return (path.empty() ? "" : path + ": ") + "malformed JSON in line " + std::to_string(line) +
                   ": " + difference;
        case Kind::missing:
            return path + ": missing";
        case Kind::mismatch:
            return (path.empty() ? "document" : path) + ": " + difference;
    }
    return difference;
}

std::string EncodeError::message() const { return path.empty() ? problem : path + ": " + problem; }

}  // namespace oska::json
