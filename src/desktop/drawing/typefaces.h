#pragma once

#include <QFont>

#include "ui/font.h"
#include "ui/text_engine.h"

namespace linewatch::desktop {

/// The typeface of everything that is drawn, in points and without hints, so that a text is as wide at every
/// scale.
QFont qtFont(double pointSize, QFont::Weight weight, bool italic = false);
QFont qtFont(const ui::Font& font);

ui::FontMetrics metricsOf(const QFont& font);

/// A font that Qt need not look up again.
struct Typeface {
  QFont font;
  ui::FontMetrics metrics;

  explicit Typeface(const QFont& of) : font(of), metrics(metricsOf(of)) {}
};

}  // namespace linewatch::desktop
