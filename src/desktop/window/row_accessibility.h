#pragma once

namespace linewatch::desktop {

class RowSurface;

/// Makes every RowSurface a list of rows for assistive technology. Each row has a name, a description, its
/// state and an action that presses it. May be called several times.
void installRowAccessibility();

/// Announces to assistive technology that the rows have changed.
void announceRows(RowSurface& surface);
/// Announces that the words of the focused row have changed, if the surface has the focus.
void announceWords(RowSurface& surface);
/// Announces which row is focused, if the surface has the focus.
void announceFocus(RowSurface& surface);

}  // namespace linewatch::desktop
