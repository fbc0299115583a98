#pragma once

#include <QImage>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "oska/platform/http_session.h"

namespace viewer {

/// Downloads map images over the platform's HTTP: the kit tells a host where they are and leaves the rest to
/// it. A few at a time, in the order of asking; one that takes long or is huge is given up.
///
/// Threads: the main thread. Lifetime: what is under way when it is destroyed ends without a call.
class MapImages {
public:
    /// `problem` is empty, or says why the image is null.
    using Completion = std::function<void(QImage image, const std::string& problem)>;

    /// A bundle names where its images will be published; those that `siteFolder` has come from `serverUrl`,
    /// where that folder is served.
    MapImages(std::string siteFolder, std::string serverUrl);

    /// `completion` is called later, once.
    void load(const std::string& url, Completion completion);

    [[nodiscard]] std::string addressOf(const std::string& url) const;

private:
    struct Job {
        std::string url;
        Completion completion;
    };

    void startSome();
    void start(Job job);
    void end(const oska::platform::HttpOutcome& outcome, const Completion& completion);

    std::deque<Job> waiting_;
    std::size_t underWay_ = 0;
    const std::string siteFolder_;
    const std::string serverUrl_;
    const std::unique_ptr<oska::platform::HttpSession> session_;
    const std::shared_ptr<const bool> isAlive_ = std::make_shared<const bool>(true);
};

}  // namespace viewer
