#pragma once

#include <memory>
#include <utility>

#include "desktop/drawing/drawing_source.h"
#include "desktop/drawing/line_shield.h"
#include "desktop/drawing/mode_icon.h"
#include "desktop/drawing/qt_text_engine.h"
#include "platform/preferences_store.h"
#include "platform/recording_log.h"
#include "simulation/forwarding_platform.h"

namespace linewatch::desktop {

/// A simulated platform that shapes and draws text as the desktop does.
class DrawnPlatform final : public ForwardingPlatform {
 public:
  using ForwardingPlatform::ForwardingPlatform;

  /// While true, writing preferences fails.
  bool diskIsFull = false;

  ui::TextEngine& textEngine() override { return textEngine_; }
  ui::ImageSource& imageSource() override { return *drawings_; }
  std::shared_ptr<PreferencesStore> makePreferencesStore(std::string_view suite) override {
    auto store = ForwardingPlatform::makePreferencesStore(suite);
    if (diskIsFull) return std::make_shared<FullStore>(std::move(store));
    return store;
  }
  std::shared_ptr<IconManager> makeIconManager() override {
    return std::make_shared<ModeIconManager>(drawings_);
  }
  std::shared_ptr<ShieldManager> makeShieldManager() override {
    return std::make_shared<LineShieldManager>();
  }

 private:
  class FullStore final : public PreferencesStore {
   public:
    explicit FullStore(std::shared_ptr<PreferencesStore> store) : store_(std::move(store)) {}

    std::optional<Value> objectForKey(std::string_view key) const override {
      return store_->objectForKey(key);
    }
    bool setObject(Value, std::string_view) override { return false; }
    void removeObject(std::string_view) override {}

   private:
    std::shared_ptr<PreferencesStore> store_;
  };

  QtTextEngine textEngine_;
  std::shared_ptr<DrawingSource> drawings_ =
      std::make_shared<DrawingSource>(std::make_shared<RecordingLog>());
};

}  // namespace linewatch::desktop
