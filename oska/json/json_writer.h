#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "oska/json/json_error.h"

/// The lowest level of writing JSON: single texts and numbers. Most callers want encode() of json.h.
/// Threads: any; one Writer is used by one thread at a time.
namespace oska::json {

/// How `/` is written inside a JSON string. A JSON reader takes both forms for the same text.
///
/// The rule of the kit:
/// - Documents that other programs may compare or sign use `escaped`, as the platform's encoder does by
///   default: upload bodies and the records' own JSON form.
/// - Lines that people read use `plain`: event lines, descriptions, quoted names.
enum class Slashes {
    escaped,  ///< `\/`
    plain,    ///< `/`
};

/// Appends `text` to `out` as a JSON string, quotes included.
///
/// `"`, `\` and control characters below U+0020 are escaped (\b \f \n \r \t, else \u001f), `/` as `slashes`
/// says. All else stays as it is. Each byte that is not part of well-formed UTF-8 becomes U+FFFD, so that the
/// result is always valid JSON.
void appendText(std::string& out, std::string_view text, Slashes slashes = Slashes::plain);

/// Appends decimal digits, with a minus sign when negative.
void appendInteger(std::string& out, std::int64_t value);

/// Appends the shortest digits that read back as `value`: 1, 0.1, -0, 0.0001, 1e-05, 9007199254740992, 1e+16.
///
/// Returns false, and appends nothing, for NaN and the infinities, which JSON does not have.
[[nodiscard]] bool appendReal(std::string& out, double value);

/// Where records are written to: a text that grows, and the error that stopped it, if any.
///
/// The `write` functions of json_encode.h take one and return false as soon as something fails.
class Writer {
public:
    /// Appends to `text`, which must outlive the writer.
    Writer(std::string& text, Slashes slashes) : text_(text), slashes_(slashes) {}

    /// The text so far; brackets, commas and colons are appended directly.
    [[nodiscard]] std::string& text() { return text_; }

    /// Appends a JSON string.
    void writeText(std::string_view value) { appendText(text_, value, slashes_); }

    /// Appends a number. Returns false when `value` is NaN or infinite; error() then says so.
    bool writeReal(double value);

    /// Adds one step to the front of the error's path while a failed call returns through its callers.
    /// Both always return false, so that a caller can return the result directly.
    bool failedIn(std::string_view key);
    /// Adds an array index to the path of the error. Always returns false.
    bool failedIn(std::size_t element);

    /// What stopped the writing; empty texts when nothing did.
    [[nodiscard]] const EncodeError& error() const { return error_; }

private:
    std::string& text_;
    Slashes slashes_;
    EncodeError error_;
};

}  // namespace oska::json
