#pragma once

#include <string>
#include <vector>

#include "ui/canvas.h"

namespace linewatch::simulation {

/// Keeps what is drawn, one entry a shape, image or line of text that can be seen.
class RecordingCanvas final : public ui::Canvas {
 public:
  enum class Kind { rect, roundedRect, path, text, image };

  struct Drawn {
    Kind kind = Kind::rect;
    /// From the canvas's origin. A text line's begins at its left end and reaches from ascent to descent; a
    /// path's encloses its points.
    ui::Rect rect;
    ui::RGBA color;
    /// With all that was multiplied in.
    double alpha = 1;
    /// The part of the canvas that could be drawn on.
    ui::Rect clip;
    /// An image's name.
    std::string name;
    /// A text line's bytes of its text, and its baseline from the canvas's top.
    std::size_t begin = 0;
    std::size_t end = 0;
    bool truncated = false;
    double baseline = 0;
  };

  explicit RecordingCanvas(Size size, ui::Appearance appearance = ui::Appearance::light, double scale = 2)
      : appearance_(appearance), scale_(scale), states_{{{}, {0, 0, size.width, size.height}, 1}} {}

  const std::vector<Drawn>& drawn() const { return drawn_; }
  /// How many entries are of the kind.
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
