#include "tools/oska/cli/memory_guard.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace oska::tool {
namespace {

// Allocates no memory.
void say(std::string_view line) {
    std::fflush(stdout);
    (void)!write(STDERR_FILENO, line.data(), line.size());
}

/// Reports the exception that is being handled if the machine lacks something. Returns false for any other
/// exception: that is a mistake of the program.
bool isShortage() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        say("oska: out of memory\n");
    } catch (const std::length_error&) {  // more than any memory holds
        say("oska: out of memory\n");
    } catch (const std::system_error&) {
        say("oska: the system refuses another thread, or has no memory for it\n");
    } catch (...) {
        return false;
    }
    return true;
}

// For an exception that no one catches on its thread. Other threads still run, so no destructors are called.
[[noreturn]] void endProcess() {
    if (std::current_exception() && isShortage()) _exit(static_cast<int>(ExitStatus::badInput));
    std::abort();
}

}  // namespace

ExitStatus runGuarded(const std::function<ExitStatus()>& program) {
    std::set_terminate(endProcess);
    try {
        return program();
    } catch (...) {
        if (!isShortage()) throw;
        return ExitStatus::badInput;
    }
}

}  // namespace oska::tool
