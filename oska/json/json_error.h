#pragma once

#include <cstddef>
#include <string>

namespace oska::json {

/// Why a document did not become a record. All texts are short and hold no control characters, so that a
/// message is one line whatever the document holds.
struct DecodeError {
    enum class Kind {
        malformed,  ///< not JSON
        missing,    ///< JSON without a key that is required
        mismatch,   ///< JSON whose value is of the wrong kind, or out of range
    };

    Kind kind = Kind::malformed;
    std::string path;  ///< "buildings[0].levels[2].wards[5].rssi"; empty: the document itself, or not known
    std::string expected;  ///< "an integer"
    std::string found;     ///< "-70.5"
    std::size_t line = 0;  ///< from 1; of a missing key: where its object begins

    /// "buildings[0].levels[2].wards[5].rssi: expected an integer, found -70.5"
    [[nodiscard]] std::string message() const;
};

/// Why a record could not be written as JSON.
struct EncodeError {
    std::string path;
    std::string problem;  ///< "Unable to encode Double.nan directly in JSON."

    [[nodiscard]] std::string message() const;
};

}  // namespace oska::json
