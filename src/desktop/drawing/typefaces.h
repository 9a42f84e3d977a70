#pragma once

#include <QFont>
#include <string_view>

#include "ui/font.h"
#include "ui/text_engine.h"

namespace linewatch::desktop {

/// Chooses the shapes of the characters that Chinese, Japanese and Korean share. `language`: e.g. "ja". For
/// fonts that are made later. Main thread.
void setFontLanguage(std::string_view language);

/// The program's font. `points`: its size. It has no hinting, so that a text has the same width at every
/// scale.
QFont qtFont(double pointSize, QFont::Weight weight, bool italic = false);
QFont qtFont(const ui::Font& font);

ui::FontMetrics metricsOf(const QFont& font);

/// A font with its metrics, which take Qt some time to compute.
struct Typeface {
  QFont font;
  ui::FontMetrics metrics;

  explicit Typeface(const QFont& of) : font(of), metrics(metricsOf(of)) {}
};

}  // namespace linewatch::desktop
