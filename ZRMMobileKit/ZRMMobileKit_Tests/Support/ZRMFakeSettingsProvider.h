// A settings provider that answers what was set.
#pragma once

#include <vector>

#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Provider/ZRMSettingsProviding.h"

// Answers at once, or, while it holds back, when told to.
class ZRMFakeSettingsProvider final : public ZRMSettingsProviding {
  public:
    ZRMMobileServiceSettings settings = ZRMMobileServiceSettings::defaultSettings();
    std::optional<ZRMError> error;
    bool holdsBack = false;
    int requests = 0;

    void provideSettings(const Callback& callback) override {
        ++requests;
        heldBack_.push_back(callback);
        if (!holdsBack) {
            giveAnswers();
        }
    }

    void giveAnswers() {
        for (auto& callback : std::exchange(heldBack_, {})) {
            callback(settings, error);
        }
    }

  private:
    std::vector<Callback> heldBack_;
};
