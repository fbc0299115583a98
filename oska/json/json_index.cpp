#include "oska/json/json_index.h"

#include <simdjson.h>

// Newer versions may change simdjson::internal, which this file uses. After looking through it, widen the
// range here and in cmake/QuenloOskaDependencies.cmake.
static_assert(simdjson::SIMDJSON_VERSION_MAJOR == 3 || simdjson::SIMDJSON_VERSION_MAJOR == 4,
              "oska/json/json_index.cpp was checked with simdjson 3.0 to 4.x only");

namespace oska::json {
namespace {

// In bytes of text. A stretch and the offsets of its tokens fit together into the second-level cache.
constexpr std::size_t STRETCH = std::size_t{128} * 1024;

// A long string makes a stretch longer. An index above this size is freed after use: allocating it again
// costs less than keeping the memory.
constexpr std::size_t LARGEST_KEPT_CAPACITY = 2 * STRETCH;

// What an index is made for at first, so that short documents need not enlarge it.
constexpr std::size_t SMALLEST_CAPACITY = 4096;

// The library's own choice can be changed by an environment variable.
const simdjson::implementation* bestKernel() {
    for (const auto* const kernel : simdjson::get_available_implementations()) {
        if (kernel->supported_by_runtime_system()) return kernel;
    }
    return simdjson::get_active_implementation();
}

auto newStage() {
    static const simdjson::implementation* const KERNEL = bestKernel();
    // The nesting depth matters to the second stage only, which is not used.
    std::unique_ptr<simdjson::internal::dom_parser_implementation> stage;
    if (KERNEL->create_dom_parser_implementation(SMALLEST_CAPACITY, 1, stage) != simdjson::SUCCESS)
        stage.reset();
    return stage;
}

thread_local std::unique_ptr<TokenIndex> spare;

// The offset behind the last comma in the window; 0 when there is none. A comma between two objects is
// preferred, because few strings hold "},".
std::size_t stretchLength(std::string_view text, std::size_t window) {
    if (text.size() <= window) return text.size();
    const std::string_view seen = text.substr(0, window);
    const std::size_t brace = seen.rfind("},");
    return brace != std::string_view::npos ? brace + 2 : seen.rfind(',') + 1;
}

}  // namespace

TokenIndex::TokenIndex() : stage_(newStage()) {}
TokenIndex::~TokenIndex() = default;

// When the comma at the end was inside a string, the stretch has an opening quote without its closing one.
// The library reports that, and a longer stretch is tried.
TokenIndex::Outcome TokenIndex::build(std::string_view text) {
    for (std::size_t window = STRETCH;; window *= 2) {
        const std::string_view stretch = text.substr(0, stretchLength(text, window));
        const Outcome outcome = buildWhole(stretch);
        if (outcome != Outcome::noTokens || stretch.size() == text.size()) return outcome;
    }
}

TokenIndex::Outcome TokenIndex::buildWhole(std::string_view stretch) {
    // JSON always ends with an ASCII character. An unfinished UTF-8 sequence at the end could make the
    // library read past it.
    if (stretch.empty() || static_cast<unsigned char>(stretch.back()) >= 0x80) return Outcome::noTokens;
    if (stage_ == nullptr) return Outcome::noMemory;
    if (stretch.size() > stage_->capacity() && stage_->set_capacity(stretch.size()) != simdjson::SUCCESS) {
        return Outcome::noMemory;
    }
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(stretch.data());
    const auto error = stage_->stage1(bytes, stretch.size(), simdjson::stage1_mode::regular);
    return error == simdjson::SUCCESS ? Outcome::indexed : Outcome::noTokens;
}

const std::uint32_t* TokenIndex::begin() const { return stage_->structural_indexes.get(); }
const std::uint32_t* TokenIndex::end() const { return begin() + stage_->n_structural_indexes; }

std::unique_ptr<TokenIndex> TokenIndex::borrow() {
    if (spare != nullptr) return std::move(spare);
    return std::make_unique<TokenIndex>();
}

void TokenIndex::giveBack(std::unique_ptr<TokenIndex> index) {
    if (index->stage_ != nullptr && index->stage_->capacity() <= LARGEST_KEPT_CAPACITY)
        spare = std::move(index);
}

}  // namespace oska::json
