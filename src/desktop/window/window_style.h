#pragma once

#include <QFont>
#include <QSize>
#include <QString>
#include <cstdint>

class QLabel;
class QWidget;

namespace linewatch::desktop {

// Distances of the windows, in points. They do not grow with the text.
inline constexpr int kWindowMargin = 16;
inline constexpr int kWindowGap = 6;
inline constexpr int kWindowSmallGap = 4;
// Sizes of the windows' texts, in points at the default text size.
inline constexpr double kWindowTitleSize = 17;
/// Names of lines, cities and feeds, and the texts of fields.
inline constexpr double kWindowNameSize = 14;
inline constexpr double kWindowTextSize = 13;
/// Texts below names, labels of fields, and headings of lists.
inline constexpr double kWindowNoteSize = 12;

/// How a label's text stands out.
enum class TextTone : std::uint8_t { plain, faint, alarming };

/// How much larger the texts are than at the default text size. This function and `windowFont` need an
/// installed platform. Main thread.
double windowTextScale();

/// The program's font at the present text size. `points`: the size at the default text size.
QFont windowFont(double points, QFont::Weight weight = QFont::Normal);

/// Gives a window that is not yet visible a size that is grown with the text, but not larger than the screen.
/// `usual`: the size at the default text size.
void resizeWithText(QWidget& window, QSize usual);

/// A label of plain text that wraps and can be selected.
QLabel* plainLabel(const QString& text, const QFont& font, TextTone tone = TextTone::plain);

/// The size step of artworks at the present text size. `usual`: the step at the default text size.
std::int64_t windowArtworkStep(std::int64_t usual);

}  // namespace linewatch::desktop
