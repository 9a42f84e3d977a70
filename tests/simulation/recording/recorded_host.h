#pragma once

#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/platform.h"
#include "simulation/recording/recording_platform.h"
#include "simulation/recording/session_recorder.h"
#include "simulation/scenario/scenario_host.h"
#include "simulation/scenario/transcript_lines.h"

namespace linewatch::simulation {

/// A host of a scenario that tells a recorder what it does, as the panel does.
class RecordedHost {
 public:
  explicit RecordedHost(World world, const SessionRecorder::Limits& limits = {})
      : recorder_(SessionRecorder::make(limits)), host_(std::move(world)) {
    installPlatform(std::make_shared<RecordingPlatform>(host_.platform(), recorder_));
  }

  /// False for a step that no real host makes.
  static bool canRecord(const Step& step) { return std::visit(Observer{}, step); }

  void perform(const Step& step) {
    std::visit(Observer{recorder_.get()}, step);
    ASSERT_EQ(host_.perform(step), std::nullopt);
    if (std::holds_alternative<step::Load>(step))
      recorder_->hostDidLoad(host_.controller(), host_.platform().world().host.bounds);
  }
  void setWorld(std::function<void(World&)> change) { perform(step::Set{std::move(change)}); }

  SessionRecorder& recorder() { return *recorder_; }
  std::vector<std::string> transcript() const { return linesOf(host_.transcript()); }

 private:
  /// Tells the recorder of a step; whether that is possible.
  struct Observer {
    SessionRecorder* recorder = nullptr;

    template <class Tell>
    bool tell(Tell told) const {
      if (recorder) told(*recorder);
      return true;
    }
    bool operator()(const step::Load&) const { return true; }
    bool operator()(const step::Advance&) const { return true; }
    bool operator()(const step::Set&) const { return true; }
    bool operator()(const step::TextSize&) const { return true; }
    bool operator()(const step::Snapshot&) const {
      return tell([](SessionRecorder& told) { told.hostDidShowContent(); });
    }
    bool operator()(const step::Appear& appear) const {
      return appear.will && appear.did && tell([](SessionRecorder& told) { told.hostWillShow(); });
    }
    bool operator()(const step::Disappear& disappear) const {
      return disappear.will && disappear.did && tell([](SessionRecorder& told) { told.hostWillHide(); });
    }
    bool operator()(const step::Update&) const {
      return tell([](SessionRecorder& told) { told.hostWillAskForUpdate(); });
    }
    bool operator()(const step::DisplayMode& change) const {
      return tell([&](SessionRecorder& told) { told.hostWillChangeMode(change.mode); });
    }
    bool operator()(const step::Tap& tap) const {
      return tell([&](SessionRecorder& told) { told.hostWillTap(tap.row); });
    }
    bool operator()(const step::Resize& resize) const {
      return tell([&](SessionRecorder& told) { told.hostWillResize({resize.width, resize.height}); });
    }
    template <class Other>
    bool operator()(const Other&) const {
      return false;
    }
  };

  std::shared_ptr<SessionRecorder> recorder_;
  ScenarioHost host_;
};

}  // namespace linewatch::simulation
