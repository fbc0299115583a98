#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "oska/foundation/network_manager.h"
#include "oska/platform/platform.h"
#include "oska/resources/bundle.h"
#include "oska/resources/bundle_kinds.h"
#include "oska/resources/bundle_shelf.h"
#include "oska/resources/resource_downloader.h"

namespace oska {

/// Gives each service the bundle of its sector: asks the endpoint where the bundle lies and which version it
/// is, reuses the one it holds when the version is the same, and downloads it otherwise. When endpoint,
/// download or decoding fails it falls back to what it holds for the sector, unless the caller forced the
/// update. Everything is in memory, for the life of the process.
///
/// Threads: loads may be called on any thread; decisions, decoding and every completion run on the main
/// queue. Each completion is called once, as a job of its own, never inside the load. Lifetime: owned by a
/// shared_ptr, which loads hold weakly.
class OskaResourceManager : public std::enable_shared_from_this<OskaResourceManager> {
public:
    using LoadCompletion = std::function<void(bool success)>;
    using FetchCompletion = std::function<void(std::optional<BundleOutput>)>;

    /// The instance of the process, made on first use over the installed platform.
    static const std::shared_ptr<OskaResourceManager>& shared();

    OskaResourceManager(const platform::Platform& platform, std::shared_ptr<OskaNetworkManager> network);

    /// Loads a sector's bundle. After success it is `currentDapoBundle()`, to be read inside the completion:
    /// the next load of the kind replaces it. `forceUpdate` downloads it in any case and never falls back.
    void loadDapoResources(std::int64_t sectorId, bool forceUpdate, LoadCompletion completion);
    /// The same for the Pelio kind.
    void loadPelioResources(std::int64_t sectorId, bool forceUpdate, LoadCompletion completion);

    /// The bundle of the last successful load; null before the first. Main queue only.
    [[nodiscard]] std::shared_ptr<const DapoBundle> currentDapoBundle() const { return dapo_.current; }
    /// The same for the Pelio kind.
    [[nodiscard]] std::shared_ptr<const PelioBundle> currentPelioBundle() const { return pelio_.current; }

    /// The fetch step: the sector's descriptor, or the one held when the endpoint fails and nothing is
    /// forced.
    void loadDapoBundle(std::int64_t sectorId, bool forceUpdate, FetchCompletion completion);
    /// The same for the Pelio kind.
    void loadPelioBundle(std::int64_t sectorId, bool forceUpdate, FetchCompletion completion);

private:
    template <class Kind>
    BundleShelf<Kind>& shelf();
    template <class Kind>
    void fetch(std::int64_t sectorId, bool forceUpdate, FetchCompletion completion);
    template <class Kind>
    void deliver(std::optional<BundleOutput> output, FetchCompletion completion);
    template <class Kind>
    void load(std::int64_t sectorId, bool forceUpdate, LoadCompletion completion);

    std::shared_ptr<platform::MainQueue> mainQueue_;
    std::shared_ptr<OskaNetworkManager> network_;
    ResourceDownloader downloader_;
    BundleShelf<DapoKind> dapo_;
    BundleShelf<PelioKind> pelio_;
};

}  // namespace oska
