#pragma once

#include <QImage>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/oska/site/site.h"
#include "tools/site_viewer/level_picture.h"
#include "tools/site_viewer/map_images.h"
#include "tools/site_viewer/player.h"
#include "tools/site_viewer/site_host.h"
#include "tools/site_viewer/ward_reading.h"

namespace viewer {

/// A site, a walk through it and the services that receive its samples: the state that the window shows,
/// without widgets.
///
/// Threads: the main thread. Lifetime: `site` and `player` outlive it.
class Session final : public PlayerListener {
public:
    struct Callbacks {
        /// All services have initialised or failed, and all images are loaded or have failed.
        std::function<void()> onReady;
        std::function<void()> onChanged;  ///< something that is shown has changed
        std::function<void()> onRewound;  ///< the walk starts again from its beginning
        std::function<void(const std::string& line)> onEvent;
        std::function<void(const std::vector<oska::DapoWard>&)> onLinks;
    };

    /// `serverUrl`: the server of `siteFolder`.
    Session(const oska::tool::Site& site, const std::string& siteFolder, const std::string& serverUrl,
            Player& player, Callbacks callbacks);
    ~Session() override;

    /// Places the Dapo view over `host`, the widget that shows `level`.
    void placeOverlay(const std::shared_ptr<oska::views::View>& host, std::size_t level);

    [[nodiscard]] LevelPicture picture(std::size_t level) const;
    /// The level of the phone, as an index of the site's levels; nullopt before the first position.
    [[nodiscard]] std::optional<std::size_t> phoneLevel() const;
    /// The state of Pelio and of Dapo, for the user.
    [[nodiscard]] std::string positionText() const;
    [[nodiscard]] std::string overlayText() const;

    void onRewound() override;
    void onSamplePlayed(const oska::platform::ReceivedForce& sample) override;
    void onPlayerChanged() override;

private:
    void loadImages();
    void beReadyOnce();

    const oska::tool::Site& site_;
    Player& player_;
    const Callbacks callbacks_;
    std::vector<QImage> images_;  // one for each level
    std::size_t imagesUnderWay_ = 0;
    bool isReady_ = false;
    StrengthLog strengths_;
    std::shared_ptr<SiteHost> host_;
    MapImages mapImages_;  // destroyed first: its callbacks use the others
};

}  // namespace viewer
