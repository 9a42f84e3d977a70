#include "desktop/drawing/typefaces.h"

#include <QFontMetricsF>
#include <QStringList>
#include <cmath>
#include <string_view>

namespace linewatch::desktop {

namespace {

// Qt uses the first family that is installed, and other fonts if none is, or for missing characters.
QStringList familiesFor(std::string_view language) {
  QStringList names = {"Inter", "Noto Sans"};
  if (language == "ja")
    names << "Noto Sans CJK JP"
          << "IPAexGothic";
  if (language == "ko") names << "Noto Sans CJK KR";
  if (language == "zh") names << "Noto Sans CJK SC";
  return names << "Noto Color Emoji"
               << "DejaVu Sans";
}

QStringList& families() {
  static QStringList names = familiesFor("");
  return names;
}

// A headline is heavier than other text. A bold headline is heavier still.
QFont::Weight weightOf(const ui::Font& font) {
  if (font.traits().bold) return QFont::Bold;
  return font.style() == ui::TextStyle::headline ? QFont::DemiBold : QFont::Normal;
}

}  // namespace

void setFontLanguage(std::string_view language) { families() = familiesFor(language); }

QFont qtFont(double pointSize, QFont::Weight weight, bool italic) {
  QFont font(families());
  font.setPixelSize(static_cast<int>(std::lround(pointSize)));
  font.setWeight(weight);
  font.setItalic(italic);
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

QFont qtFont(const ui::Font& font) { return qtFont(font.pointSize(), weightOf(font), font.traits().italic); }

ui::FontMetrics metricsOf(const QFont& font) {
  const QFontMetricsF metrics(font);
  return {metrics.ascent(), metrics.descent(), metrics.leading(), metrics.capHeight()};
}

}  // namespace linewatch::desktop
