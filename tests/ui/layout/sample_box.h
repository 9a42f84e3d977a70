#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "ui/layout/layout_box.h"

namespace linewatch::ui {

/// A layout box that draws nothing. Its content is lines of text 10 points high, with the baseline 8 below
/// the line's top.
class SampleBox final : public LayoutBox {
 public:
  explicit SampleBox(const Rect& frame = {}) : frame_(frame) {}
  ~SampleBox() override { endLayout(); }

  LayoutBox* superbox() const override { return superbox_; }
  std::size_t subboxCount() const override { return subboxes_.size(); }
  LayoutBox& subboxAt(std::size_t index) const override { return *subboxes_[index]; }
  const Rect& frame() const override { return frame_; }
  LayoutDirection layoutDirection() const override { return direction; }
  double displayScale() const override { return 2; }
  bool isHidden() const override { return hidden; }
  void setNeedsLayout() override { forgetFittingSize(); }

  std::optional<double> intrinsicHeight(double /*width*/) override {
    ++questions;
    return lines > 0 ? std::optional(10.0 * lines) : std::nullopt;
  }
  double contentHeightWithin(const Size& size) override {
    return 10.0 * std::min(lines, static_cast<int>(size.height / 10));
  }
  double firstLineHeight(double /*width*/) override { return lines > 0 ? 10 : 0; }
  std::optional<double> firstBaselineFromTop() override {
    return lines > 0 ? std::optional(8.0) : std::nullopt;
  }
  double lastBaselineFromBottom() override { return lines > 0 ? 2 : 0; }
  LayoutBox& boxForFirstBaseline() override { return baselineBox != nullptr ? *baselineBox : *this; }

  /// A box inside this one that constraints place.
  std::shared_ptr<SampleBox> add(int linesOfText = 0) {
    auto box = std::make_shared<SampleBox>();
    box->lines = linesOfText;
    box->superbox_ = this;
    subboxes_.push_back(box);
    box->didEnterSuperbox();
    box->setLaidOutByConstraints(true);
    return box;
  }
  void leave() {
    willLeaveSuperbox();
    auto& siblings = std::exchange(superbox_, nullptr)->subboxes_;
    std::erase_if(siblings, [&](const auto& box) { return box.get() == this; });
  }
  void layOut() { layOutByConstraints(); }
  void resize(const Size& size) { frame_ = {frame_.x, frame_.y, size.width, size.height}; }
  Size fitting(const Size& target) { return fittingSize(target, kRequiredPriority, kFittingSizePriority); }

  int lines = 0;
  int questions = 0;
  bool hidden = false;
  LayoutDirection direction = LayoutDirection::leftToRight;
  SampleBox* baselineBox = nullptr;

 private:
  void setFrameFromLayout(const Rect& frame) override { frame_ = frame; }

  Rect frame_;
  SampleBox* superbox_ = nullptr;
  std::vector<std::shared_ptr<SampleBox>> subboxes_;
};

}  // namespace linewatch::ui
