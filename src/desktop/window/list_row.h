#pragma once

#include <QPainter>
#include <QStyleOptionViewItem>

namespace linewatch::desktop {

/// The space before and after the texts of a list's row, in points.
inline constexpr double kRowInset = 16;

/// Draws that the mouse is over a row of a list, and that the row has the keyboard's focus.
void paintRowState(QPainter& painter, const QStyleOptionViewItem& option);

}  // namespace linewatch::desktop
