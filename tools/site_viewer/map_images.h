#pragma once

#include <QImage>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "oska/platform/http_session.h"

namespace viewer {

/// Downloads map images over the platform's HTTP: the kit gives a host their URLs only. A few downloads run
/// at a time, in the order of `load`; one that takes long or is very large fails.
///
/// Threads: the main thread. Lifetime: downloads that run when it is destroyed end without a callback.
class MapImages {
public:
    /// `problem` says why `image` is null; otherwise it is empty.
    using Completion = std::function<void(QImage image, const std::string& problem)>;

    /// Images that are files of `siteFolder` are downloaded from `serverUrl`, which serves that folder: the
    /// URLs in a bundle may be those of a server that does not exist yet.
    MapImages(std::string siteFolder, std::string serverUrl);

    /// Calls `completion` once, after this has returned.
    void load(const std::string& url, Completion completion);

    /// Where the image with the bundle's `url` is downloaded from.
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
