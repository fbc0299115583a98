#pragma once

#include <sys/types.h>

#include <array>
#include <string>
#include <vector>

namespace oska::tool_tests {

struct Ended {
    int status = -1;  ///< as a shell has it
    std::string out;
    std::string err;

    /// The event lines of `out`.
    [[nodiscard]] std::string events() const;
};

/// A folder of its own for input files, gone with it.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

    /// Writes a file, with the folders on the way to it; answers with its path.
    std::string file(const std::string& name, const std::string& content) const;

private:
    std::string path_;
};

/// A command line's words, which stand between single blanks.
[[nodiscard]] std::vector<std::string> words(const std::string& commandLine);

/// Runs the program to its end.
Ended runOska(const std::vector<std::string>& arguments, const std::string& standardInput = "");

[[nodiscard]] std::string contentOf(const std::string& path);

/// A bundle whose one building, 1, has these levels; see `levelDocument`.
[[nodiscard]] std::string bundleDocument(const std::string& levels);
/// A level with a map image of 10 by 10 pixels, the scale 1 unless given, and no offset.
[[nodiscard]] std::string levelDocument(int id, const std::string& wards, const std::string& scale = "1");

/// The program while it waits for its input. It must be interrupted before this is destroyed.
class RunningOska {
public:
    explicit RunningOska(const std::vector<std::string>& arguments);
    ~RunningOska();
    RunningOska(const RunningOska&) = delete;
    RunningOska& operator=(const RunningOska&) = delete;

    void write(const std::string& text) const;
    /// Waits for one line of its output or errors that holds `text`, and passes over those before; empty at
    /// the end.
    [[nodiscard]] std::string readLine(const std::string& text = "") const;
    /// As Ctrl-C does; returns the status with which it ends.
    [[nodiscard]] int interrupt() const;

private:
    std::array<int, 2> ends_{};
    pid_t process_ = -1;
};

}  // namespace oska::tool_tests
