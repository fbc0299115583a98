#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "tests/adapters/native/native_http_fixture.h"

namespace {

std::atomic<std::size_t> largestAllocation{SIZE_MAX};

}  // namespace

// They replace the operators of the whole program. Not inlined: GCC would take `free` for a mismatch of
// `new`.
[[gnu::noinline]] void* operator new(std::size_t size) {
    auto* memory = size < largestAllocation ? std::malloc(size) : nullptr;
    if (!memory) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace oska::native {
namespace {

TEST_F(NativeHttp, EndsOnlyTheRequestForWhichThereIsNoMemory) {
    const auto small = wireReply(200, "ok");
    const auto large = "HTTP/1.1 200 OK\r\n\r\n" + std::string(4'000'000, 'x');
    LoopbackServer server([&](WireConnection& connection) {
        const auto request = connection.receive();
        connection.send(std::string_view(request->target == "/" ? small : large));
    });
    largestAllocation = 1'000'000;
    const auto outcome = fetch(factory_, get(server.url("/large")));
    EXPECT_EQ(fetch(factory_, get(server.url("/"))).body, "ok");
    largestAllocation = SIZE_MAX;
    EXPECT_EQ(kindOf(outcome), HttpErrorKind::outOfResources);
    EXPECT_FALSE(outcome.body);
    EXPECT_EQ(fetch(factory_, get(server.url("/large"))).body->size(), 4'000'000U);
}

TEST_F(NativeHttp, EndsTheRequestForWhichThereIsNoThread) {
    pthread_attr_t usual;
    pthread_getattr_default_np(&usual);
    auto impossible = usual;
    pthread_attr_setstacksize(&impossible, std::size_t{1} << 46U);
    pthread_setattr_default_np(&impossible);
    const auto outcome = fetch(factory_, get("http://127.0.0.1/"));
    pthread_setattr_default_np(&usual);
    EXPECT_EQ(kindOf(outcome), HttpErrorKind::outOfResources);
    EXPECT_EQ(fetch(factory_, get(server_.url("/"))).body, "ok");
}

}  // namespace
}  // namespace oska::native
