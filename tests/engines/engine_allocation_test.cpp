// A program of its own, because it counts what `operator new` is asked for.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "oska/dapo/dapo_detection.h"
#include "oska/pelio/pelio_ward_selection.h"

namespace {
std::size_t allocations = 0;
}

void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace oska {
namespace {

constexpr int WARDS = 400;
constexpr int SAMPLES = 400;

std::string wardName(int number) { return "\u1112\u1161\u11ab \u3042 lobby-" + std::to_string(number); }

// Of a size that changes; each with one ward in blanks, and with strangers never heard before or after.
platform::ReceivedForce sample(int number) {
    platform::ReceivedForce sample{.mobile_time = number * 500};
    for (int i = 0; i < 30 + number % 17; ++i) sample.rfs[wardName((13 * number + i) % WARDS)] = -70;
    sample.rfs["  " + wardName(number % WARDS)] = -71;
    for (const char* stranger :
         {"a phone with quite a long name that nobody has been told, number ", "\u0416e\u0301 "})
        sample.rfs[stranger + std::to_string(number)] = -40;
    return sample;
}

/// Allocations of `handle` over the second half of the samples, long after its window has filled.
template <class Handle>
std::size_t allocationsOf(Handle handle) {
    std::size_t counted = 0;
    for (int number = 0; number < SAMPLES; ++number) {
        auto next = sample(number);
        const auto before = allocations;
        handle(std::move(next));
        if (number >= SAMPLES / 2) counted += allocations - before;
    }
    return counted;
}

TEST(EngineAllocation, AFullWindowTakesNoMemoryForASample) {
    DapoBundle dapo;
    PelioBundle pelio;
    auto& dapoWards = dapo.buildings.emplace_back().levels.emplace_back().wards;
    auto& pelioWards = pelio.buildings.emplace_back().levels.emplace_back().wards;
    for (int i = 0; i < WARDS; ++i) {
        dapoWards.push_back({.id = i, .name = wardName(i), .rssi = -70 + i % 2});
        pelioWards.push_back({.id = i, .name = wardName(i), .rssi = -80});
    }
    DapoDetection detection;
    detection.indexDapoWards(dapo.buildings);
    PelioWardSelection selection(pelio);
    std::size_t detected = 0;
    EXPECT_EQ(allocationsOf([&](auto next) { detected += detection.handle(std::move(next)).wards.size(); }),
              0u);
    EXPECT_EQ(detected, 0u) << "a delivery may allocate";
    EXPECT_EQ(allocationsOf([&](auto next) { ASSERT_TRUE(selection.handle(std::move(next))); }), 0u);
}

}  // namespace
}  // namespace oska
