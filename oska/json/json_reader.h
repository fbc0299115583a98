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

/// Reads one JSON document from front to back, strictly by RFC 8259.
///
/// Most callers want decode() of json.h; records are read through json_decode.h.
///
/// The text must be UTF-8; one byte order mark at the start is skipped. At most 512 arrays and objects may be
/// nested. What the caller skips is checked as strictly as what it reads.
///
/// All operations return bool. True: the operation has consumed what its name says. False: the document holds
/// something else, and the reader has failed, except where an operation below says that false can also mean
/// something harmless. A failed reader keeps its first error, and every later call returns false; so a caller
/// may check once, after several calls.
///
/// Threads: one at a time. Lifetime: the text must outlive the reader.
class Reader {
public:
    /// Reads `text`, which must outlive the reader.
    explicit Reader(std::string_view text);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// Enters an object. After true, call nextKey() or takeKey(), then read or skip the value, and so on
    /// until nextKey() returns false.
    bool beginObject();

    /// Moves to the next member and stores its key, unescaped, in `key`. The key is valid until the next
    /// call. Also returns false at the end of the object, which it then leaves: check failed().
    bool nextKey(std::string_view& key);

    /// Moves to the next member if its key is `name`. Otherwise returns false and consumes nothing: also when
    /// the key is spelled with an escape. Never fails. Faster than nextKey() for a key that can be foreseen.
    /// REQUIRES: `name` has no character that JSON escapes.
    bool takeKey(std::string_view name);

    /// Enters an array. After true, call nextElement(), then read or skip the element, and so on until it
    /// returns false.
    bool beginArray();

    /// Moves to the next element. Also returns false at the end of the array, which it then leaves.
    bool nextElement();

    /// Reads a number whose value is an integer of 64 bits, however it is spelled (7, 7.0, 70e-1). Never
    /// rounds.
    bool readInteger(std::int64_t& value);

    /// Reads any number that a double can hold, as the nearest double. A number too close to zero is zero.
    bool readReal(double& value);

    /// Reads `true` or `false`.
    bool readBoolean(bool& value);

    /// Reads a string and unescapes it. `expected` is what the error says was expected here.
    bool readText(std::string& value, std::string_view expected = "text");

    /// Consumes `null`. At anything else returns false and consumes nothing. Never fails.
    bool takeNull();

    /// Consumes one value of any type, with all that is in it.
    bool skipValue();

    /// Consumes the value of the key that nextKey() returned last. The path of an error in it has that key.
    bool skipMember();

    /// Checks that only white space follows the value that was read. Call it last.
    bool finish();

    /// Where the next token begins, in bytes from the start of the text; for missingKey().
    [[nodiscard]] std::size_t offset() const;

    /// Whether an operation has failed.
    [[nodiscard]] bool failed() const { return error_.has_value(); }

    /// The first error. REQUIRES: failed(). Call it once.
    [[nodiscard]] DecodeError takeError() { return *std::move(error_); }

    // For readers of records. All return false, so that a caller can return the result directly.

    /// Fails because the text that was read last is not what was expected.
    bool rejectText(std::string_view expected);

    /// Fails because the object that began at `objectOffset` has no member `key`.
    bool missingKey(std::string_view key, std::size_t objectOffset);

    /// Adds one step to the front of the error's path while a failed call returns through its callers: a key,
    /// or the index of an element, counted from 0.
    bool failedIn(std::string_view key);
    /// Adds an array index to the path of the error. Always returns false.
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
    const char* stretch_ = nullptr;         // the part of the text that is indexed at present
    const std::uint32_t* token_ = nullptr;  // the next token: its offset from `stretch_`
    const std::uint32_t* end_ = nullptr;    // behind the last token of the stretch
    std::size_t depth_ = 0;
    bool isFirst_ = false;         // the next item is the first of its array or object: no comma before it
    std::string_view escapedKey_;  // the last key, as the document spells it
    std::string unescapedKey_;
    std::optional<DecodeError> error_;
    bool hasPath_ = true;  // whether the error lies at the value being read, so that its path is known
};

// Defined here so that the compiler sees `name`: comparing with a constant then needs no call.
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
