#pragma once

#include <QFont>

#include "ui/font.h"
#include "ui/text_engine.h"

namespace linewatch::desktop {

/// The font for everything that is drawn, in points. It is not hinted, so that a text has the same width at
/// every scale.
QFont qtFont(double pointSize, QFont::Weight weight, bool italic = false);
QFont qtFont(const ui::Font& font);

ui::FontMetrics metricsOf(const QFont& font);

/// A font with its metrics, so that Qt looks them up only once.
struct Typeface {
  QFont font;
  ui::FontMetrics metrics;

  explicit Typeface(const QFont& of) : font(of), metrics(metricsOf(of)) {}
};

}  // namespace linewatch::desktop
