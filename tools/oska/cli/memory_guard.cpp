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

// Without memory of its own.
void say(std::string_view line) {
    std::fflush(stdout);
    (void)!write(STDERR_FILENO, line.data(), line.size());
}

/// What is being handled says so if it is a want of the machine; anything else is a mistake of the program's.
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

// On a thread that nobody catches for. Others go on meanwhile, so nothing is taken down.
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
