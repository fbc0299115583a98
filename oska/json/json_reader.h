#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "oska/json/json_error.h"

namespace oska::json {

class TokenIndex;
enum class NumberReading;

/// Goes through one JSON document from front to back, strictly by RFC 8259: the text must be UTF-8 (one byte
/// order mark is skipped), and what the caller skips is checked like what it reads. At most 512 arrays and
/// objects are nested.
///
/// Most callers want decode() of json.h; a record is read through json_decode.h.
///
/// A call that answers true has consumed what it names. One that answers false has either found something
/// else, where that is said below, or has failed: the reader then keeps the first error, and all later calls
/// answer false.
///
/// Threads: one at a time. Lifetime: the text must outlive the reader.
class Reader {
public:
    explicit Reader(std::string_view text);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// After true: nextKey or takeKey, each followed by the value, until nextKey answers false without a
    /// failure.
    bool beginObject();

    /// The next key, unescaped and valid until the next call; false also at the end of the object.
    bool nextKey(std::string_view& key);

    /// Whether the next key is `name`, which holds nothing that JSON escapes; false, with nothing consumed,
    /// when something else or an escaped spelling comes next. The quick way through an object whose order is
    /// known.
    bool takeKey(std::string_view name);

    /// After true: nextElement, followed by the element, until it answers false without a failure.
    bool beginArray();

    /// False also at the end of the array.
    bool nextElement();

    /// A number with an integral value within 64 bits, however it is spelt; never rounded.
    bool readInteger(std::int64_t& value);

    /// Any number that a double can hold; one too small for it is zero.
    bool readReal(double& value);
    bool readBoolean(bool& value);
    bool readText(std::string& value, std::string_view expected = "text");

    /// False, with nothing consumed, at anything but null.
    bool takeNull();

    /// Consumes one value of any kind.
    bool skipValue();

    /// Consumes the value of the key that nextKey answered last; an error in there is told with its key.
    bool skipMember();

    /// That nothing follows the value that was read.
    bool finish();

    /// Where the next token begins, in bytes, for missingKey().
    [[nodiscard]] std::size_t offset() const;

    [[nodiscard]] bool failed() const { return error_.has_value(); }

    /// REQUIRES: failed().
    [[nodiscard]] DecodeError takeError() { return *std::move(error_); }

    // For readers of records. All answer false, so that they can be returned.

    /// Fails because the text read last is not what was expected.
    bool rejectText(std::string_view expected);

    /// Fails because the object that began at `objectOffset` has no `key`.
    bool missingKey(std::string_view key, std::size_t objectOffset);

    /// Say, from the inside out, where in the document the failure lies.
    bool failedIn(std::string_view key);
    bool failedIn(std::size_t element);

private:
    enum class Enclosure : char { object = '}', array = ']' };

    [[nodiscard]] char head() const;
    [[nodiscard]] std::string_view spelling(const std::uint32_t* token) const;
    [[nodiscard]] std::string_view insideOfText(const std::uint32_t* token) const;
    [[nodiscard]] std::size_t offsetOf(const std::uint32_t* token) const;
    [[nodiscard]] std::string found() const;

    void indexFrom(std::size_t offset);
    bool begin(char bracket, std::string_view expected);
    bool nextItem(Enclosure enclosure);
    bool end();
    bool takeText(std::string_view& text, std::string& unescaped);
    bool takeNumber(NumberReading reading, std::string_view expected, std::string_view expectedRange);
    bool takeLiteral(std::string_view literal);

    bool skipObject();
    bool skipArray();
    bool skipText();
    bool skipNumber();

    bool mismatch(std::string_view expected);
    bool malformed(std::string_view expected);
    bool fail(DecodeError::Kind kind, std::string_view expected, std::string found, std::size_t offset);

    std::string_view text_;
    std::unique_ptr<TokenIndex> index_;
    const char* stretch_ = nullptr;         // the part of the text that is indexed
    const std::uint32_t* token_ = nullptr;  // the next one, counted from there
    const std::uint32_t* end_ = nullptr;
    std::size_t depth_ = 0;
    bool isFirst_ = false;         // no comma before the next item: its bracket has just been opened
    std::string_view escapedKey_;  // the last one, as the text has it
    std::string unescapedKey_;
    std::optional<DecodeError> error_;
    bool hasPath_ = true;  // whether the error lies where the reading has come to
};

// Here so that the compiler sees the name: comparing with a constant takes no call.
inline bool Reader::takeKey(std::string_view name) {
    const int comma = isFirst_ ? 0 : 1;
    if (end_ - token_ < 3 || (comma == 1 && stretch_[*token_] != ',')) return false;
    const char* const key = stretch_ + token_[comma];
    const char* const colon = stretch_ + token_[comma + 1];
    if (*key != '"' || *colon != ':' || static_cast<std::size_t>(colon - key) < name.size() + 2) return false;
    if (key[1 + name.size()] != '"' || std::memcmp(key + 1, name.data(), name.size()) != 0) return false;
    token_ += comma + 2;
    isFirst_ = false;
    return true;
}

}  // namespace oska::json
