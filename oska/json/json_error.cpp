#include "oska/json/json_error.h"

namespace oska::json {

std::string DecodeError::message() const {
    std::string difference = "expected " + expected + ", found " + found;
    switch (kind) {
        case Kind::MALFORMED:
            return (path.empty() ? "" : path + ": ") + "malformed JSON in line " + std::to_string(line) +
                   ": " + difference;
        case Kind::MISSING:
            return path + ": missing";
        case Kind::MISMATCH:
            return (path.empty() ? "document" : path) + ": " + difference;
    }
    return difference;
}

std::string EncodeError::message() const { return path.empty() ? problem : path + ": " + problem; }

}  // namespace oska::json
