#pragma once

namespace oska::tool {

/// The exit status of the program, the same for every command.
enum class ExitStatus : int {
    done = 0,
    serviceFailed = 1,  ///< the first initialisation or the first start failed
    badInput =
        2,  ///< bad usage, or a file that cannot be read or understood; standard error says where and why
    interrupted = 130,  ///< Ctrl-C: 128 and the number of the signal, as shells have it
};

}  // namespace oska::tool
