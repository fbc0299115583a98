#include "adapters/native/reply_collector.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <utility>

#include "adapters/native/http_address.h"
#include "adapters/native/http_redirect.h"

namespace oska::native {

using platform::HttpErrorKind;

namespace {

constexpr std::size_t MAXIMUM_HEADER_BYTES = std::size_t{256} << 10;
constexpr int FIRST_FINAL_STATUS = 200;
constexpr std::size_t MAXIMUM_RESERVATION = std::size_t{16} << 20;  // whatever length the server announces

std::string_view trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

/// Of "HTTP/1.1 200 OK". libcurl has checked that the three digits are there.
int statusOf(std::string_view statusLine) {
    statusLine.remove_prefix(std::min(statusLine.find(' ') + 1, statusLine.size()));
    int status = 0;
    std::from_chars(statusLine.data(), statusLine.data() + statusLine.size(), status);
    return status;
}

bool isFolded(std::string_view line) { return line.starts_with(' ') || line.starts_with('\t'); }

bool isPlain(std::string_view coding) {
    return coding.empty() || equalsIgnoringAsciiCase(coding, "identity");
}

std::size_t announcedLength(const platform::HttpReply& reply) {
    const auto text = headerValue(reply, "Content-Length").value_or("");
    std::size_t length = 0;
    std::from_chars(text.data(), text.data() + text.size(), length);
    return length;
}

std::optional<ContentDecoder::Coding> codingNamed(std::string_view name) {
    if (equalsIgnoringAsciiCase(name, "gzip") || equalsIgnoringAsciiCase(name, "x-gzip")) {
        return ContentDecoder::Coding::gzip;
    }
    if (equalsIgnoringAsciiCase(name, "deflate")) return ContentDecoder::Coding::deflate;
    return std::nullopt;
}

}  // namespace

template <class Step>
bool ReplyCollector::withinMemory(Step step) {
    try {
        return step();
    } catch (const std::bad_alloc&) {
        return refuse(HttpErrorKind::outOfResources, "out of memory");  // short enough to need no memory
    }
}

bool ReplyCollector::addHeaderLine(std::string_view line) {
    return withinMemory([&] { return collectHeaderLine(line); });
}

bool ReplyCollector::addBody(std::string_view piece) {
    return withinMemory([&] { return collectBody(piece); });
}

bool ReplyCollector::collectHeaderLine(std::string_view line) {
    headerBytes_ += line.size();
    if (headerBytes_ > MAXIMUM_HEADER_BYTES) {
        return refuse(HttpErrorKind::badServerReply, server_ + " sent more than 256 KiB of headers.");
    }
    if (reply_) return true;
    if (!unfinished_) {
        beginHeaders(line);
    } else if (trimmed(line).empty()) {
        endHeaders();
    } else {
        addHeader(line);
    }
    return true;
}

void ReplyCollector::beginHeaders(std::string_view statusLine) {
    unfinished_.emplace().status = statusOf(statusLine);
}

void ReplyCollector::addHeader(std::string_view line) {
    auto& headers = unfinished_->headers;
    if (isFolded(line) && !headers.empty()) {
        headers.back().value.append(" ").append(trimmed(line));
        return;
    }
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) return;
    headers.push_back(
        {std::string(trimmed(line.substr(0, colon))), std::string(trimmed(line.substr(colon + 1)))});
}

void ReplyCollector::endHeaders() {
    auto complete = std::exchange(unfinished_, std::nullopt);
    if (*complete->status < FIRST_FINAL_STATUS) return;
    redirects_ = isRedirect(*complete);
    reply_ = std::move(complete);
}

bool ReplyCollector::collectBody(std::string_view piece) {
    if (redirects_ || piece.empty()) return true;
    if (!std::exchange(hasBody_, true) && !beginBody()) return false;
    if (!decoder_) return keep(piece);
    const auto progress = decoder_->decode(piece, [this](std::string_view plain) { return keep(plain); });
    if (progress != ContentDecoder::Progress::broken) return progress == ContentDecoder::Progress::going;
    return refuse(HttpErrorKind::badServerReply,
                  "The compressed body of the reply from " + server_ + " is broken.");
}

bool ReplyCollector::beginBody() {
    const auto coding = reply_ ? headerValue(*reply_, "Content-Encoding").value_or("") : std::string_view{};
    if (isPlain(coding)) {
        if (reply_) body_.reserve(std::min({announcedLength(*reply_), maximumBytes_, MAXIMUM_RESERVATION}));
        return true;
    }
    const auto known = codingNamed(coding);
    if (!known) {
        return refuse(
            HttpErrorKind::badServerReply,
            server_ + " sent a body in the coding \"" + std::string(coding) + "\", which was not asked for.");
    }
    decoder_ = std::make_unique<ContentDecoder>(*known);
    return true;
}

bool ReplyCollector::keep(std::string_view plain) {
    if (plain.size() > maximumBytes_ - body_.size()) {
        return refuse(HttpErrorKind::replyTooLarge, "The reply from " + server_ + " is larger than the " +
                                                        std::to_string(maximumBytes_) + " bytes allowed.");
    }
    body_.append(plain);
    return true;
}

bool ReplyCollector::finish() {
    if (!decoder_ || decoder_->isComplete()) return true;
    return refuse(HttpErrorKind::badServerReply,
                  "The compressed body of the reply from " + server_ + " is cut off.");
}

bool ReplyCollector::refuse(HttpErrorKind kind, std::string description) {
    if (!refusal_) refusal_ = {kind, std::move(description)};
    std::string().swap(body_);
    return false;
}

}  // namespace oska::native
