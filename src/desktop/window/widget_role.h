#pragma once

#include <QAccessible>

class QAbstractButton;
class QWidget;

namespace linewatch::desktop {

/// Gives a widget its role for assistive technology. Without one, Qt takes the windows, links and pictures of
/// this program for plain containers. To be called before the widget is shown. A button also gets the action
/// that presses it, and a label its text as its name.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

/// Tells assistive technology whether what the button shows and hides is shown now. The button must have a
/// role from `setAccessibleRole`.
void setAccessibleExpanded(QAbstractButton& button, bool isExpanded);

/// A part of a window that is not visible. Assistive technology reads its name aloud when that changes, once
/// it has finished what it is saying. Owned by the window.
QWidget* makeAnnouncer(QWidget& window);
/// Does nothing if this was the last text.
void announce(QWidget& announcer, const QString& text);

}  // namespace linewatch::desktop
