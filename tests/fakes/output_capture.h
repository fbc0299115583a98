#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace oska::fakes {

/// Captures standard output; `take` returns the lines since its last call. Only one may exist at a time. When
/// the test fails, everything captured is written to standard error at the end.
class OutputCapture {
public:
    OutputCapture() { testing::internal::CaptureStdout(); }
    ~OutputCapture() {
        std::fflush(stdout);
        all_ += testing::internal::GetCapturedStdout();
        if (testing::Test::HasFailure()) std::fputs(all_.c_str(), stderr);
    }
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    std::vector<std::string> take() {
        std::fflush(stdout);
        const auto text = testing::internal::GetCapturedStdout();
        testing::internal::CaptureStdout();
        all_ += text;
        std::vector<std::string> lines;
        for (std::size_t at = 0; at < text.size();) {
            const auto end = text.find('\n', at);
            lines.push_back(text.substr(at, end - at));
            at = end == std::string::npos ? text.size() : end + 1;
        }
        return lines;
    }

private:
    std::string all_;
};

}  // namespace oska::fakes
