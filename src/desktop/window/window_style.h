#pragma once

#include <QFont>
#include <QString>
#include <cstdint>

class QLabel;

namespace linewatch::desktop {

/// How a label's text stands out.
enum class TextTone : std::uint8_t { plain, faint, alarming };

/// The program's font at the present text size. `points`: the size at the default text size. Needs an
/// installed platform. Main thread.
QFont windowFont(double points, QFont::Weight weight = QFont::Normal);

/// A label of plain text that wraps and can be selected.
QLabel* plainLabel(const QString& text, const QFont& font, TextTone tone = TextTone::plain);

/// The size step of artworks at the present text size. `usual`: the step at the default text size.
std::int64_t windowArtworkStep(std::int64_t usual);

}  // namespace linewatch::desktop
