// Measures decoding and encoding, above all decoding a large bundle file into records. Each large measurement
// runs in a new child process, because the state of the heap matters as much as the decoder: in a "mapped"
// process the heap already has its pages, in a "fresh" one it gets them from the system while decoding. A
// general JSON library, the yardstick, fills the same records in the same kind of process; the ratio of the
// two can be compared between machines.

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "oska/json/json.h"
#include "oska/resources/bundle.h"

namespace {

using namespace oska;
namespace json = oska::json;

// --- the document: about 47 MB, 79,200 wards, 237,600 contents ---

constexpr int BUILDINGS = 20;
constexpr int LEVELS = 10;
constexpr int WARDS = 396;

std::string number(std::int64_t value) { return std::to_string(value); }

DapoLevelWardContent contentOf(std::int64_t ward, std::int64_t n) {
    const std::string_view label =
        n == 2 ? "둘째 층 동쪽 전시실 안내 및 예약" : "Opening hours, tickets and guided tours, hall ";
    return {n, std::string(label) + number(ward % 97),
            "https://content.museum.example.invalid/public/sites/51/wards/" + number(ward) + "/items/" +
                number(n) + "?lang=ko&v=3"};
}

DapoLevelWard wardOf(std::int64_t id) {
    DapoLevelWard ward{id, "ward-" + number(id) + "-north", {}, {}, -60 - id % 30, {}};
    if (id % 3 != 0) {
        ward.x = id * 37 % 4000;
        ward.y = id * 91 % 4000;
    }
    for (std::int64_t n = 1; n <= 2 + id % 3; ++n) ward.contents.push_back(contentOf(id, n));
    return ward;
}

DapoLevel levelOf(std::int64_t id) {
    DapoLevel level{id, "Level " + number(id), {"https://maps.example.invalid/" + number(id) + ".png"}, {}};
    level.map_image.image_width = 1600;
    level.map_image.image_height = 1200.5;
    level.map_image.scale_x = 0.4;
    level.map_image.scale_y = 0.3;
    for (std::int64_t i = 0; i < WARDS; ++i) level.wards.push_back(wardOf(id * WARDS + i));
    return level;
}

// Encodes level by level, so that the measured processes do not inherit a large heap of freed records.
void appendBuilding(std::string& text, std::int64_t id) {
    text += R"({"id":)" + number(id) + R"(,"name":"Building","levels":[)";
    for (std::int64_t i = 0; i < LEVELS; ++i) {
        if (i > 0) text += ',';
        text += *json::encode(levelOf(id * LEVELS + i), json::Slashes::plain);
    }
    text += "]}";
}

const std::string& document() {
    static const std::string DOCUMENT = [] {
        std::string text = R"({"id":51,"name":"A \"large\" site","operating_system":"iOS","buildings":[)";
        text.reserve(60'000'000);
        for (std::int64_t id = 0; id < BUILDINGS; ++id) {
            if (id > 0) text += ',';
            appendBuilding(text, id);
        }
        return text + "]}";
    }();
    return DOCUMENT;
}

// --- the yardstick: the same records, filled from its document tree ---

template <class Value>
void readYardstick(const nlohmann::json& from, Value& value);

template <class Value>
void readYardstick(const nlohmann::json& from, std::vector<Value>& values) {
    for (const auto& element : from) readYardstick(element, values.emplace_back());
}

template <class Value>
void readYardstick(const nlohmann::json& from, std::optional<Value>& value) {
    readYardstick(from, value.emplace());
}

struct YardstickFields {
    const nlohmann::json& object;

    template <class Member>
    void operator()(const char* name, Member& member) {
        const auto found = object.find(name);
        if (found != object.end()) readYardstick(*found, member);
    }
};

template <class Value>
void readYardstick(const nlohmann::json& from, Value& value) {
    if constexpr (Record<Value>) {
        YardstickFields visit{from};
        fields(visit, value);
    } else {
        from.get_to(value);
    }
}

// Measures processor time, page faults included. Time that other programs use is not counted.
class Stopwatch {
public:
    [[nodiscard]] double seconds() const {
        return static_cast<double>(std::clock() - begin_) / CLOCKS_PER_SEC;
    }

private:
    std::clock_t begin_ = std::clock();
};

// --- what is measured, without destroying the results; each function returns seconds ---

void require(bool holds) {
    if (!holds) std::abort();
}

double decodeWithYardstick() {
    DapoBundle bundle;
    const Stopwatch stopwatch;
    const auto tree = nlohmann::json::parse(document());
    readYardstick(tree, bundle);
    const double seconds = stopwatch.seconds();
    require(bundle.buildings.size() == BUILDINGS);
    return seconds;
}

double decodeWithKit() {
    const Stopwatch stopwatch;
    const auto bundle = json::decode<DapoBundle>(document());
    const double seconds = stopwatch.seconds();
    require(bundle && bundle->buildings.size() == BUILDINGS);
    return seconds;
}

double copyText() {
    std::string copy(document().size(), ' ');
    const Stopwatch stopwatch;
    copy.assign(document());
    const double seconds = stopwatch.seconds();
    require(copy == document());
    return seconds;
}

// --- measuring ---

using Work = double (*)();

enum class Heap { fresh, mapped };

// Makes the heap keep all its memory, and makes the system provide that memory now.
void mapHeap() {
    constexpr std::size_t PLENTY = 800'000'000;
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, 2'000'000'000);
    std::vector<char> pages(PLENTY, 1);
    benchmark::DoNotOptimize(pages.data());
}

double secondsInThisProcess(Work work, Heap heap) {
    if (heap == Heap::mapped) {
        mapHeap();
    } else {
        malloc_trim(0);
    }
    // Touches every page of the document: an inherited page costs extra time when it is read first, and a
    // document that has just been received has no such pages.
    benchmark::DoNotOptimize(std::count(document().begin(), document().end(), '{'));
    return work();
}

double secondsInChild(Work work, Heap heap) {
    document();
    int ends[2];
    require(pipe(ends) == 0);
    const pid_t child = fork();
    double seconds = 0;
    if (child == 0) {
        seconds = secondsInThisProcess(work, heap);
        _exit(write(ends[1], &seconds, sizeof seconds) == sizeof seconds ? 0 : 1);
    }
    require(child > 0 && read(ends[0], &seconds, sizeof seconds) == sizeof seconds);
    close(ends[0]);
    close(ends[1]);
    waitpid(child, nullptr, 0);
    return seconds;
}

// Decoder and yardstick are measured in turns, so that a slow phase of the machine affects both.
void decodeLargeBundle(benchmark::State& state, Work work, Heap heap) {
    double best = 1e9;
    double bestOfYardstick = 1e9;
    for (auto _ : state) {
        const double seconds = secondsInChild(work, heap);
        state.SetIterationTime(seconds);
        best = std::min(best, seconds);
        bestOfYardstick = std::min(bestOfYardstick, secondsInChild(decodeWithYardstick, heap));
    }
    const double megabytes = static_cast<double>(document().size()) / 1e6;
    state.counters["best_MB/s"] = megabytes / best;
    state.counters["yardstick_MB/s"] = megabytes / bestOfYardstick;
    state.counters["times_yardstick"] = bestOfYardstick / best;
}

void encodeLevel(benchmark::State& state) {
    const DapoLevel level = levelOf(1);
    std::string text;
    for (auto _ : state) {
        text.clear();
        benchmark::DoNotOptimize(json::append(text, level));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}

struct EventLine {
    std::int64_t at = 0;
    std::string event;
    double value = 0;
};

template <class Visit>
void fields(Visit& f, EventLine& line) {
    f("at", line.at);
    f("event", line.event);
    f("value", line.value);
}

void decodeShortLine(benchmark::State& state) {
    const std::string line = R"({"at":1700000000500,"event":"onPelioResult","value":-61.5})";
    for (auto _ : state) benchmark::DoNotOptimize(json::decode<EventLine>(line));
}

void encodeShortLine(benchmark::State& state) {
    const EventLine line{1700000000500, "onPelioResult", -61.5};
    std::string text;
    for (auto _ : state) {
        text.clear();
        benchmark::DoNotOptimize(json::append(text, line));
    }
}

#define LARGE(name, work, heap)                            \
    BENCHMARK_CAPTURE(decodeLargeBundle, name, work, heap) \
        ->UseManualTime()                                  \
        ->Unit(benchmark::kMillisecond)                    \
        ->Iterations(8)

LARGE(mapped, decodeWithKit, Heap::mapped);
LARGE(fresh, decodeWithKit, Heap::fresh);
LARGE(memcpy, copyText, Heap::mapped);
BENCHMARK(encodeLevel);
BENCHMARK(decodeShortLine);
BENCHMARK(encodeShortLine);

}  // namespace
