#pragma once

namespace linewatch::desktop {

class RowSurface;

/// Shows every RowSurface to assistive technology as a list. Each row has a name, a description, a state and
/// an action that presses it. May be called several times.
void installRowAccessibility();

/// Tells assistive technology that the rows have changed.
void announceRows(RowSurface& surface);
/// Tells assistive technology that the words of the focused row have changed. Does nothing without the focus.
void announceWords(RowSurface& surface);
/// Tells assistive technology which row is focused. Does nothing without the focus.
void announceFocus(RowSurface& surface);

}  // namespace linewatch::desktop
