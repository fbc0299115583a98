#pragma once

#include <QImage>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/site_viewer/level_picture.h"
#include "tools/site_viewer/map_images.h"
#include "tools/site_viewer/player.h"
#include "tools/site_viewer/site.h"
#include "tools/site_viewer/site_host.h"
#include "tools/site_viewer/ward_reading.h"

namespace viewer {

/// A site, a walk through it, and the services that listen: all that a window shows, and no widgets.
///
/// Threads: the main thread. Lifetime: `site` and `player` outlive it.
class Session final : public PlayerListener {
public:
    struct Callbacks {
        std::function<void()> onReady;    ///< services have reported and images have come, or have not
        std::function<void()> onChanged;  ///< something that is shown
        std::function<void()> onRewound;  ///< the walk starts over
        std::function<void(const std::string& line)> onEvent;
        std::function<void(const std::vector<oska::DapoWard>&)> onLinks;
    };

    /// `serverUrl`: where the site's folder is served.
    Session(const Site& site, const std::string& siteFolder, const std::string& serverUrl, Player& player,
            Callbacks callbacks);
    ~Session() override;

    /// Lays the Dapo view over the widget that shows `level`.
    void placeOverlay(const std::shared_ptr<oska::views::View>& host, std::size_t level);

    [[nodiscard]] LevelPicture picture(std::size_t level) const;
    /// Where the phone is, as an index into the site's levels.
    [[nodiscard]] std::optional<std::size_t> phoneLevel() const;
    /// What the services say, for people.
    [[nodiscard]] std::string positionText() const;
    [[nodiscard]] std::string overlayText() const;

    void onRewound() override;
    void onSamplePlayed(const oska::platform::ReceivedForce& sample) override;
    void onPlayerChanged() override;

private:
    void loadImages();
    void beReadyOnce();

    const Site& site_;
    Player& player_;
    const Callbacks callbacks_;
    std::vector<QImage> images_;  // by level
    std::size_t imagesUnderWay_ = 0;
    bool isReady_ = false;
    StrengthLog strengths_;
    std::shared_ptr<SiteHost> host_;
    MapImages mapImages_;  // goes first: what is under way then ends
};

}  // namespace viewer
