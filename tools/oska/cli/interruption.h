#pragma once

namespace oska::tool {

/// Ctrl-C, or SIGTERM, as a wish to end in order: noted, and acted on where the program waits. The same
/// signal again ends the program at once. Process-wide, as signals are. Threads: any.
class Interruption {
public:
    Interruption() = delete;

    /// From now on; before, Ctrl-C ends the program as usual.
    static void listen();

    [[nodiscard]] static bool requested();

    /// Readable for ever once it is requested, for those who wait for several things.
    [[nodiscard]] static int descriptor();

    static void wait();

    /// Waits until `file` can be read without waiting, which a plain file always can. False: interrupted
    /// meanwhile, or before.
    [[nodiscard]] static bool waitForInput(int file);
};

}  // namespace oska::tool
