#include "ui/label.h"

#include <algorithm>
#include <utility>

#include "platform/platform.h"
#include "ui/visual_effect_view.h"

namespace linewatch::ui {

namespace {

// Points. A frame on the pixel grid may be this much lower than the text by rounding.
constexpr double kHeightTolerance = 1e-6;

}  // namespace

Label::Label() : font_(TextStyle::body) {}

void Label::setText(const std::optional<std::string>& text) {
  if (text.value_or("") == text_.text()) return;
  TextAttributes attributes;
  if (!text_.isEmpty()) attributes = text_.runs().front().attributes;
  text_ = AttributedText(text.value_or(""), attributes);
  contentDidChange();
}

void Label::setAttributedText(AttributedText text) {
  if (text == text_) return;
  text_ = std::move(text);
  contentDidChange();
}

void Label::setFont(const Font& font) {
  if (font == font_) return;
  font_ = font;
  contentDidChange();
}

void Label::setTextColor(const Color& color) {
  if (color == textColor_) return;
  textColor_ = color;
  setNeedsDisplay();
}

void Label::setNumberOfLines(std::size_t lines) {
  if (std::exchange(numberOfLines_, lines) != lines) contentDidChange();
}

void Label::setLineBreakMode(LineBreakMode mode) {
  if (std::exchange(lineBreakMode_, mode) != mode) contentDidChange();
}

void Label::setTextAlignment(TextAlignment alignment) {
  if (std::exchange(alignment_, alignment) != alignment) setNeedsDisplay();
}

void Label::contentDidChange() {
  shaped_.reset();
  measured_.reset();
  displayed_.reset();
  invalidateIntrinsicContentSize();
  setNeedsDisplay();
}

double Label::capHeight() const { return platform().textEngine().metrics(font_).capHeight; }

const ShapedText& Label::shaped() {
  if (!shaped_) shaped_ = platform().textEngine().shape(text_, font_);
  return *shaped_;
}

TextLayoutRequest Label::requestFor(double width) const {
  TextLayoutRequest request;
  request.width = width;
  request.maximumNumberOfLines = numberOfLines_;
  request.lineBreakMode = lineBreakMode_;
  request.alignment = alignment_;
  request.direction = layoutDirection();
  request.scale = displayScale();
  return request;
}

const std::shared_ptr<const TextLayout>& Label::layOut(std::optional<Laid>& laid,
                                                       const TextLayoutRequest& request) {
  if (!laid || laid->request != request) laid = Laid{request, shaped().layOut(request)};
  return laid->layout;
}

std::optional<double> Label::intrinsicWidth() {
  return text_.isEmpty() ? 0 : ceiledToPixel(shaped().naturalWidth(), displayScale());
}

std::optional<double> Label::intrinsicHeight(double width) {
  if (text_.isEmpty()) measured_.reset();
  return text_.isEmpty() ? 0 : layOut(measured_, requestFor(width))->size.height;
}

std::optional<double> Label::firstBaselineFromTop() {
  return measured_ ? measured_->layout->firstBaseline() : 0;
}

double Label::lastBaselineFromBottom() {
  return measured_ ? measured_->layout->size.height - measured_->layout->lastBaseline() : 0;
}

// The height matters only when the measured text does not fit.
std::shared_ptr<const TextLayout> Label::layoutWithin(const Size& size) {
  if (text_.isEmpty() || !(size.width > 0 && size.height > 0)) return std::make_shared<const TextLayout>();
  const TextLayoutRequest request = requestFor(size.width);
  if (measured_ && measured_->request == request &&
      measured_->layout->size.height <= size.height + kHeightTolerance) {
    return measured_->layout;
  }
  TextLayoutRequest limited = request;
  limited.maximumHeight = size.height + kHeightTolerance;
  const auto& layout = layOut(displayed_, limited);
  const bool fits = layout->size.height <= limited.maximumHeight;
  return fits ? layout : std::make_shared<const TextLayout>();
}

double Label::contentHeightWithin(const Size& size) {
  return std::min(size.height, layoutWithin(size)->size.height);
}

double Label::firstLineHeight(double width) {
  if (text_.isEmpty()) return 0;
  TextLayoutRequest request = requestFor(width);
  request.maximumNumberOfLines = 1;
  return shaped().layOut(request)->size.height;
}

std::shared_ptr<const TextLayout> Label::displayedLayout() { return layoutWithin(frame().size()); }

Color Label::effectiveTextColor() const {
  for (const View* view = superview(); view != nullptr; view = view->superview()) {
    if (const auto* effect = dynamic_cast<const VisualEffectView*>(view))
      return effect->contentColor(textColor_);
  }
  return textColor_;
}

void Label::draw(Canvas& canvas) {
  const auto layout = displayedLayout();
  if (!layout->lines.empty()) canvas.drawText(*layout, {}, effectiveTextColor());
}

}  // namespace linewatch::ui
