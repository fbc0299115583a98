#include "oska/json/json_reader.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "oska/json/json_index.h"
#include "oska/json/json_number.h"
#include "oska/json/json_path.h"
#include "oska/json/json_text.h"

namespace oska::json {
namespace {

// The limit of the reference platform's decoder. Reading records is recursive, so this also limits the stack.
constexpr std::size_t DEEPEST_NESTING = 512;

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

std::size_t lineOf(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}

}  // namespace

Reader::Reader(std::string_view text)
    : text_(text.starts_with(BYTE_ORDER_MARK) ? text.substr(BYTE_ORDER_MARK.size()) : text),
      index_(TokenIndex::borrow()) {
    indexFrom(0);
}

Reader::~Reader() { TokenIndex::giveBack(std::move(index_)); }

// When only white space is left, there is no next token; the next operation reports that. A fault that this
// function reports may lie far behind the value being read, so its path is not known.
void Reader::indexFrom(std::size_t offset) {
    const std::string_view rest = text_.substr(offset);
    const TokenIndex::Outcome outcome = index_->build(rest);
    if (outcome == TokenIndex::Outcome::indexed) {
        stretch_ = rest.data();
        token_ = index_->begin();
        end_ = index_->end();
    } else if (outcome == TokenIndex::Outcome::noMemory) {
        hasPath_ = false;
        fail(DecodeError::Kind::malformed, "memory for its tokens", "none", offset);
    } else if (auto fault = findLexicalFault(rest)) {
        hasPath_ = false;
        fail(DecodeError::Kind::malformed, fault->expected, std::move(fault->found), offset + fault->offset);
    }
}

// The first byte of the next token. At the end NUL, with which no token begins.
char Reader::head() const { return token_ != end_ ? stretch_[*token_] : '\0'; }

// The token, up to the next one, without white space at its end. Stray bytes behind a number or literal are
// thus part of it and make it invalid. Behind the closing quote of a string any byte begins a new token.
std::string_view Reader::spelling(const std::uint32_t* token) const {
    const char* const first = stretch_ + token[0];
    const char* last = stretch_ + token[1];
    while (isWhiteSpace(last[-1])) --last;
    return {first, static_cast<std::size_t>(last - first)};
}

// REQUIRES: the token begins with a quote. The index has checked that the string is closed.
std::string_view Reader::insideOfText(const std::uint32_t* token) const {
    const std::string_view quoted = spelling(token);
    assert(quoted.size() >= 2 && quoted.back() == '"');
    return quoted.substr(1, quoted.size() - 2);
}

std::size_t Reader::offset() const { return token_ != end_ ? offsetOf(token_) : text_.size(); }

std::size_t Reader::offsetOf(const std::uint32_t* token) const {
    return static_cast<std::size_t>(stretch_ - text_.data()) + *token;
}

bool Reader::beginObject() { return begin('{', "an object"); }
bool Reader::beginArray() { return begin('[', "an array"); }

bool Reader::begin(char bracket, std::string_view expected) {
    if (head() != bracket) return mismatch(expected);
    if (depth_ == DEEPEST_NESTING) {
        return fail(DecodeError::Kind::malformed, "at most 512 nested arrays and objects", "more", offset());
    }
    ++depth_;
    ++token_;
    isFirst_ = true;
    return true;
}

// Moves past the comma, if there must be one. Returns false at the closing bracket, which it consumes, and
// after a failure.
bool Reader::nextItem(Enclosure enclosure) {
    const char next = head();
    if (next == static_cast<char>(enclosure)) return end();
    if (std::exchange(isFirst_, false)) return true;
    if (next != ',') return malformed(enclosure == Enclosure::object ? "',' or '}'" : "',' or ']'");
    if (++token_ == end_) indexFrom(offsetOf(token_ - 1) + 1);
    return !failed();
}

bool Reader::end() {
    --depth_;
    ++token_;
    isFirst_ = false;
    return false;
}

bool Reader::nextElement() { return nextItem(Enclosure::array); }

bool Reader::nextKey(std::string_view& key) {
    if (!nextItem(Enclosure::object)) return false;
    if (head() != '"') return malformed("a key");
    escapedKey_ = insideOfText(token_);
    if (!takeText(key, unescapedKey_)) return false;
    if (head() != ':') return malformed("':'");
    ++token_;
    return true;
}

bool Reader::readInteger(std::int64_t& value) {
    return takeNumber(token_ != end_ ? parseInteger(spelling(token_), value) : NumberReading::notANumber,
                      "an integer", "an integer of 64 bits");
}

bool Reader::readReal(double& value) {
    return takeNumber(token_ != end_ ? parseReal(spelling(token_), value) : NumberReading::notANumber,
                      "a number", "a number that a double can hold");
}

bool Reader::takeNumber(NumberReading reading, std::string_view expected, std::string_view expectedRange) {
    if (reading == NumberReading::outOfRange) return mismatch(expectedRange);
    if (reading != NumberReading::read) return mismatch(expected);
    ++token_;
    return true;
}

bool Reader::readBoolean(bool& value) {
    value = head() == 't';
    return takeLiteral(value ? "true" : "false") || mismatch("true or false");
}

bool Reader::readText(std::string& value, std::string_view expected) {
    if (head() != '"') return mismatch(expected);
    std::string_view text;
    if (!takeText(text, value)) return false;
    if (text.data() != value.data()) value.assign(text);
    return true;
}

// Sets `text` to the string: a part of the document when it has no escapes, else the content of `unescaped`.
// REQUIRES: a quote is next.
bool Reader::takeText(std::string_view& text, std::string& unescaped) {
    text = insideOfText(token_);
    if (text.find('\\') != std::string_view::npos) {
        if (const auto bad = unescape(text, unescaped)) {
            return fail(DecodeError::Kind::malformed, "an escape of JSON", excerpt(escapeAt(text, *bad)),
                        offset() + 1 + *bad);
        }
        text = unescaped;
    }
    ++token_;
    return true;
}

bool Reader::takeNull() { return takeLiteral("null"); }

bool Reader::takeLiteral(std::string_view literal) {
    if (head() != literal.front() || spelling(token_) != literal) return false;
    ++token_;
    return true;
}

bool Reader::skipValue() {
    switch (head()) {
        case '{':
            return skipObject();
        case '[':
            return skipArray();
        case '"':
            return skipText();
        case 't':
            return takeLiteral("true") || malformed("a value");
        case 'f':
            return takeLiteral("false") || malformed("a value");
        case 'n':
            return takeLiteral("null") || malformed("a value");
        default:
            return skipNumber();
    }
}

bool Reader::skipMember() {
    const std::string_view key = escapedKey_;
    return skipValue() || failedIn(key);
}

bool Reader::skipObject() {
    if (!beginObject()) return false;
    for (std::string_view key; nextKey(key);) {
        if (!skipMember()) return false;
    }
    return !failed();
}

bool Reader::skipArray() {
    if (!beginArray()) return false;
    for (std::size_t i = 0; nextElement(); ++i) {
        if (!skipValue()) return failedIn(i);
    }
    return !failed();
}

bool Reader::skipText() {
    std::string_view text;
    std::string unescaped;
    return takeText(text, unescaped);
}

bool Reader::skipNumber() {
    if (token_ == end_ || !isNumber(spelling(token_))) return malformed("a value");
    ++token_;
    return true;
}

bool Reader::finish() {
    if (failed()) return false;
    return token_ == end_ || malformed("the end");
}

bool Reader::rejectText(std::string_view expected) {
    --token_;
    return fail(DecodeError::Kind::mismatch, expected, found(), offset());
}

bool Reader::missingKey(std::string_view key, std::size_t objectOffset) {
    fail(DecodeError::Kind::missing, "a value", "none", objectOffset);
    return failedIn(key);
}

bool Reader::failedIn(std::string_view key) {
    if (hasPath_) prependKey(error_->path, key);
    return false;
}

bool Reader::failedIn(std::size_t element) {
    if (hasPath_) prependIndex(error_->path, element);
    return false;
}

// Reports a value of the wrong type. When the token is not even JSON, that is reported instead.
bool Reader::mismatch(std::string_view expected) {
    const char next = head();
    const std::uint32_t* const token = token_;
    if (next != '{' && next != '[' && !skipValue()) return false;
    token_ = token;
    return fail(DecodeError::Kind::mismatch, expected, found(), offset());
}

bool Reader::malformed(std::string_view expected) {
    return fail(DecodeError::Kind::malformed, expected, found(), offset());
}

bool Reader::fail(DecodeError::Kind kind, std::string_view expected, std::string found, std::size_t offset) {
    if (!failed()) {
        error_ = DecodeError{kind, {}, std::string(expected), std::move(found), lineOf(text_, offset)};
    }
    token_ = end_;
    isFirst_ = false;
    return false;
}

std::string Reader::found() const {
    if (token_ == end_) return "the end";
    switch (head()) {
        case '{':
            return "an object";
        case '[':
            return "an array";
        case '"':
            return '"' + excerpt(insideOfText(token_)) + '"';
        default:
            return excerpt(spelling(token_));
    }
}

}  // namespace oska::json
