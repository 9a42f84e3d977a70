#pragma once

#include <string>
#include <vector>

#include "ui/canvas.h"

namespace linewatch::simulation {

/// Records one entry for each shape, image and line of text that is drawn and at least partly visible.
class RecordingCanvas final : public ui::Canvas {
 public:
  enum class Kind { rect, roundedRect, path, text, image };

  struct Drawn {
    Kind kind = Kind::rect;
    /// In points from the canvas's origin. A text line's rectangle reaches from its ascent to its descent; a
    /// path's encloses its points.
    ui::Rect rect;
    ui::RGBA color;
    /// The product of all alphas at the time of drawing.
    double alpha = 1;
    /// The clip at the time of drawing.
    ui::Rect clip;
    /// The name of an image.
    std::string name;
    /// For a line of text: its bytes in the whole text, and its baseline in points from the canvas's top.
    std::size_t begin = 0;
    std::size_t end = 0;
    bool truncated = false;
    double baseline = 0;
  };

  explicit RecordingCanvas(Size size, ui::Appearance appearance = ui::Appearance::light, double scale = 2)
      : appearance_(appearance), scale_(scale), states_{{{}, {0, 0, size.width, size.height}, 1}} {}

  const std::vector<Drawn>& drawn() const { return drawn_; }
  /// The number of entries of the kind.
  std::size_t count(Kind kind) const;
  /// Whether every `save` has had its `restore`.
  bool isBalanced() const { return states_.size() == 1; }

  ui::Appearance appearance() const override { return appearance_; }
  double scale() const override { return scale_; }
  void save() override { states_.push_back(states_.back()); }
  void restore() override { states_.pop_back(); }
  void translate(const ui::Point& offset) override { states_.back().origin = states_.back().origin + offset; }
  void clip(const ui::Rect& rect) override;
  void multiplyAlpha(double alpha) override { states_.back().alpha *= alpha; }
  void fillRect(const ui::Rect& rect, const ui::Color& color) override;
  void fillRoundedRect(const ui::Rect& rect, double radius, const ui::Color& color) override;
  void fillPath(const ui::Path& path, const ui::Color& color) override;
  void drawText(const ui::TextLayout& layout, const ui::Point& origin, const ui::Color& color) override;
  void drawImage(const ui::Image& image, const ui::Rect& rect) override;

 private:
  struct State {
    ui::Point origin;
    ui::Rect clip;
    double alpha = 1;
  };

  Drawn* add(Kind kind, const ui::Rect& rect, const ui::Color& color);

  ui::Appearance appearance_;
  double scale_;
  std::vector<State> states_;
  std::vector<Drawn> drawn_;
};

}  // namespace linewatch::simulation
