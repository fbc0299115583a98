#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "oska/json/json_error.h"

namespace oska::json {

/// How `/` is written; both forms read back alike. This is the one place that decides:
/// - documents, which other programs may compare or sign, are written as the platform's encoder writes them
///   by default: escaped. These are upload bodies and the records' own JSON form (`append`, `encode`).
/// - lines that people read keep `/`: event lines, descriptions, quoted names. Their writers say `plain`.
enum class Slashes {
    escaped,  ///< `\/`
    plain,
};

/// Appends `text` as a JSON string: `"`, `\` and control characters escaped (\b \f \n \r \t, else \u001f),
/// `/` as `slashes` says, everything else as it stands. Each byte that is no part of well-formed UTF-8
/// becomes U+FFFD, so that the result is always JSON.
void appendText(std::string& out, std::string_view text, Slashes slashes = Slashes::plain);

void appendInteger(std::string& out, std::int64_t value);

/// Appends the shortest digits that read back as `value`: 1, 0.1, -0, 0.0001, 1e-05, 9007199254740992, 1e+16.
/// False, with nothing appended, for NaN and the infinities, which JSON does not have.
[[nodiscard]] bool appendReal(std::string& out, double value);

/// Where records are written to: a text under construction, and the error that ended it, if any.
class Writer {
public:
    Writer(std::string& text, Slashes slashes) : text_(text), slashes_(slashes) {}

    [[nodiscard]] std::string& text() { return text_; }

    void writeText(std::string_view value) { appendText(text_, value, slashes_); }

    /// False after a failure, which error() then describes.
    bool writeReal(double value);

    /// Say, from the inside out, where in the record the failure lies. Both answer false, so that they can be
    /// returned.
    bool failedIn(std::string_view key);
    bool failedIn(std::size_t element);

    [[nodiscard]] const EncodeError& error() const { return error_; }

private:
    std::string& text_;
    Slashes slashes_;
    EncodeError error_;
};

}  // namespace oska::json
