#pragma once

namespace oska::tool {

/// Ctrl-C or SIGTERM as a request to end in order: the signal is only noted, and the program checks for it
/// where it waits. A second signal ends the program at once. Process-wide, as signals are. Threads: any.
class Interruption {
public:
    Interruption() = delete;

    /// Starts to note the signals; before, Ctrl-C ends the program as usual.
    static void listen();

    [[nodiscard]] static bool requested();

    /// A file descriptor for poll(2); it stays readable once an interruption was requested.
    [[nodiscard]] static int descriptor();

    static void wait();

    /// Waits until `file` can be read without waiting; a plain file always can. Returns false if an
    /// interruption was requested.
    [[nodiscard]] static bool waitForInput(int file);
};

}  // namespace oska::tool
