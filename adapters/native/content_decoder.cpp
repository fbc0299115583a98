#include "adapters/native/content_decoder.h"

#define ZLIB_CONST
#include <zlib.h>

#include <array>
#include <optional>

namespace oska::native {
namespace {

using Space = std::array<char, 32768>;

constexpr int WINDOW_BITS = 15;        // the largest window that either coding allows
constexpr int GZIP = 16;               // added to the window bits, it makes zlib read gzip
constexpr unsigned char DEFLATED = 8;  // RFC 1950, 2.2: the low half of the first byte

/// Without a wrapper the first byte begins a block, and never has the low half of a wrapper's first byte.
int windowBits(ContentDecoder::Coding coding, unsigned char firstByte) {
    if (coding == ContentDecoder::Coding::gzip) return WINDOW_BITS + GZIP;
    return (firstByte & 0x0F) == DEFLATED ? WINDOW_BITS : -WINDOW_BITS;
}

}  // namespace

struct ContentDecoder::Stream {
    ~Stream() {
        if (hasBegun) inflateEnd(&z);
    }

    void take(std::string_view piece) {
        z.next_in = reinterpret_cast<const unsigned char*>(piece.data());
        z.avail_in = static_cast<unsigned>(piece.size());
    }

    /// False when bytes follow the end of a deflate stream: only gzip streams may follow each other.
    bool begin(Coding coding) {
        if (hasEnded && coding == Coding::deflate) return false;
        const int result = hasBegun ? inflateReset(&z) : inflateInit2(&z, windowBits(coding, *z.next_in));
        hasBegun = true;
        hasEnded = false;
        return result == Z_OK;
    }

    /// Fills `space` as far as the input goes. Nullopt when the input is broken.
    std::optional<std::string_view> inflateInto(Space& space) {
        z.next_out = reinterpret_cast<unsigned char*>(space.data());
        z.avail_out = static_cast<unsigned>(space.size());
        const int result = inflate(&z, Z_NO_FLUSH);
        hasEnded = result == Z_STREAM_END;
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) return std::nullopt;
        return std::string_view(space.data(), space.size() - z.avail_out);
    }

    z_stream z{};
    bool hasBegun = false;
    bool hasEnded = false;
};

ContentDecoder::ContentDecoder(Coding coding) : coding_(coding), stream_(std::make_unique<Stream>()) {}

ContentDecoder::~ContentDecoder() = default;

ContentDecoder::Progress ContentDecoder::decode(std::string_view piece, const Sink& sink) {
    Space space;
    auto& stream = *stream_;
    stream.take(piece);
    for (bool isSpaceFull = false; stream.z.avail_in > 0 || isSpaceFull;) {
        if ((!stream.hasBegun || stream.hasEnded) && !stream.begin(coding_)) return Progress::broken;
        const auto plain = stream.inflateInto(space);
        if (!plain) return Progress::broken;
        if (!plain->empty() && !sink(*plain)) return Progress::refused;
        isSpaceFull = stream.z.avail_out == 0 && !stream.hasEnded;
    }
    return Progress::going;
}

bool ContentDecoder::isComplete() const { return stream_->hasEnded; }

}  // namespace oska::native
