#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace oska::fakes {

/// Captures standard output; `take` returns the lines since its last call. Only one may exist at a time. When
/// the test fails, everything captured is written to standard error at the end.
class OutputCapture {
public:
    OutputCapture() { testing::internal::CaptureStdout(); }
    ~OutputCapture() {
        taken();
        if (testing::Test::HasFailure()) std::fputs(all_.c_str(), stderr);
    }
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    std::vector<std::string> take() {
        std::istringstream text(taken());
        testing::internal::CaptureStdout();
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }

private:
    std::string taken() {
        std::fflush(stdout);
        auto text = testing::internal::GetCapturedStdout();
        all_ += text;
        return text;
    }

    std::string all_;
};

}  // namespace oska::fakes
