#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "oska/platform/quenlo_common.h"

namespace oska::fakes {

/// Makes generators that call the test's functions inside the service's calls, on the service's thread.
class ScriptedGenerators {
public:
    class Generator : public platform::RFDGenerator {
    public:
        explicit Generator(ScriptedGenerators& script) : script_(script) {}

        /// Sends a sample to the delegate, if there is one.
        void send(platform::ReceivedForce sample) {
            if (const auto delegate = delegate_.lock()) delegate->onRfdResult(*this, std::move(sample));
        }

        platform::RfdAvailability checkIsAvailableRfd() override {
            script_.inCheck(*this);
            return {script_.isAvailable, ""};
        }
        void setScanMode(platform::ScanMode) override {}
        void setDelegate(std::weak_ptr<platform::RFDGeneratorDelegate> delegate) override {
            delegate_ = std::move(delegate);
        }
        void setPressureProvider(std::function<float()>) override {}
        void generateRfd(const platform::RfdOptions&) override { generateReplayRfd(); }
        void generateReplayRfd() override {
            script_.inGenerate(*this);
            script_.running +=
                std::exchange(isRunning_, true) ? 0 : 1;  // also when the script started or stopped it
        }
        void stopRfdGeneration() override {
            script_.inStop(*this);
            script_.running -= std::exchange(isRunning_, false) ? 1 : 0;
        }

    private:
        ScriptedGenerators& script_;
        bool isRunning_ = false;
        std::weak_ptr<platform::RFDGeneratorDelegate> delegate_;
    };

    platform::RFDGeneratorFactory factory() {
        return [this] { return std::make_shared<Generator>(*this); };
    }

    using Action = std::function<void(Generator&)>;
    Action inCheck = [](auto&) {};
    Action inGenerate = [](auto&) {};
    Action inStop = [](auto&) {};
    bool isAvailable = true;
    int running = 0;  ///< started and not stopped; destroying one does not count as stopping it
};

}  // namespace oska::fakes
