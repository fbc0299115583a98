#include "tools/oska/hosts/dapo_host.h"

#include <utility>

#include "oska/platform/notification_center.h"

namespace oska::tool {
namespace {

constexpr views::Rect SCREEN{0, 0, 390, 844};
constexpr views::ViewPoint SCREEN_CENTRE{195, 422};

/// Prints each change of the view's hidden flag.
class VisibilityPrinter final : public platform::ViewPeer {
public:
    VisibilityPrinter(const views::View& view, const Events& events)
        : events_(events), wasHidden_(view.isHidden()) {}

    void changed(const views::View& view, platform::ViewChange) override {
        if (std::exchange(wasHidden_, view.isHidden()) == view.isHidden()) return;
        events_.print("visibility", "visible", !view.isHidden());
    }

private:
    const Events& events_;
    bool wasHidden_;
};

class DapoHost final : public Host, public DapoViewDelegate {
public:
    DapoHost(DapoHostOptions options, const Events& events)
        : options_(std::move(options)), events_(events), screen_(views::View::create(SCREEN)) {}

    ~DapoHost() override { view_->setPeer(nullptr); }  // the end of the program is no event

    void place(const std::shared_ptr<DapoHost>& self) {
        view_ = DapoView::create();
        view_->setDelegate(self);
        view_->configureFrame({.to = screen_, .dapoImage = nullptr});
        view_->setPeer(std::make_unique<VisibilityPrinter>(*view_, events_));
        if (options_.outputInterval) view_->setSelectionInterval(*options_.outputInterval);
    }

    void initialize(bool forceUpdate) override {
        options_.initialization.forceUpdate = forceUpdate;
        view_->initialize(options_.initialization);
    }

    void start() override { view_->startService(); }

    void stop() override { view_->stopService(); }

    [[nodiscard]] bool isIdle() const override { return view_->getCurrentDapoWards().empty(); }

    void onInitSuccess(DapoView&, bool success, std::optional<DapoInitErrorCode> code) override {
        events_.printOutcome("onInitSuccess", success, code);
        noteInitialization(success, code);
    }

    void onDapoSuccess(DapoView&, bool success, std::optional<DapoErrorCode> code) override {
        events_.printOutcome("onDapoSuccess", success, code);
        noteStart(success);
    }

    void onClick(DapoView&, const std::vector<DapoWard>& dapoWards) override {
        events_.print("onClick", "dapoWards", dapoWards);
    }

    void onDapoSelectionChanged(DapoView&, const std::vector<DapoWard>& dapoWards) override {
        events_.print("onDapoSelectionChanged", "dapoWards", dapoWards);
    }

    void onDapoMapImageData(DapoView&, std::int64_t levelId, const DapoMapImage& mapImage) override {
        events_.print("onDapoMapImageData", "level_id", levelId, "image", mapImage);
    }

private:
    void performOwn(const Action& action) override {
        switch (action.kind) {
            case ActionKind::tap:
                screen_->tapAt(SCREEN_CENTRE);
                return;
            case ActionKind::foreground:
                return platform::NotificationCenter::shared().post(
                    platform::Notification::willEnterForeground);
            case ActionKind::setVisibility:
                return view_->setVisibility(action.isVisible);
            case ActionKind::setSelectionInterval:
                return view_->setSelectionInterval(action.seconds.value_or(0));
            case ActionKind::setUnchangedDeliveryInterval:
                return view_->setUnchangedDeliveryInterval(action.seconds);
            default:
                return;  // what every host does
        }
    }

    DapoHostOptions options_;
    const Events& events_;
    std::shared_ptr<views::View> screen_;
    std::shared_ptr<DapoView> view_;
};

}  // namespace

std::shared_ptr<Host> makeDapoHost(DapoHostOptions options, const Events& events) {
    auto host = std::make_shared<DapoHost>(std::move(options), events);
    host->place(host);
    return host;
}

}  // namespace oska::tool
