#pragma once

#include <cstddef>
#include <string>

/// What went wrong between a document and a record. Both errors are plain values. Their texts are English,
/// meant for developers, and hold no control characters: a message is always one line.
namespace oska::json {

/// Why a document did not become a record.
struct DecodeError {
    /// What kind of fault it is.
    enum class Kind {
        malformed,  ///< the text is not JSON
        missing,    ///< it is JSON, but a required key is missing
        mismatch,   ///< it is JSON, but a value has the wrong type or is out of range
    };

    Kind kind = Kind::malformed;

    /// Where in the document: `buildings[0].levels[2].wards[5].rssi`. Keys that are not plain names are
    /// quoted: `rfs["gate 2"]`. Empty when the document itself is meant or the place is not known. Cut after
    /// about 400 bytes.
    std::string path;

    /// What should have stood there: "an integer".
    std::string expected;

    /// What stood there, cut after about 60 bytes: "-70.5".
    std::string found;

    /// The line of the fault, counted from 1. Of a missing key: the line where its object begins.
    std::size_t line = 0;

    /// All of it in one sentence:
    /// "buildings[0].levels[2].wards[5].rssi: expected an integer, found -70.5"
    [[nodiscard]] std::string message() const;
};

/// Why a record could not be written as JSON: it holds NaN or an infinity, which JSON does not have.
struct EncodeError {
    /// Where in the record, in the form of DecodeError::path.
    std::string path;

    /// "Unable to encode Double.nan directly in JSON."
    std::string problem;

    /// Path and problem in one sentence.
    [[nodiscard]] std::string message() const;
};

}  // namespace oska::json
