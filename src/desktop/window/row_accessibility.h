#pragma once

namespace linewatch::desktop {

class RowSurface;

/// Gives every RowSurface a list of rows for assistive technology: each row has a name, a description, its
/// state and an action that presses it. May be called again.
void installRowAccessibility();

/// Tells assistive technology that the surface has other rows than before.
void announceRows(RowSurface& surface);
/// Tells assistive technology that the row that has the focus, if the surface has it, says something else.
void announceWords(RowSurface& surface);
/// Tells assistive technology which row has the focus, if the surface has it.
void announceFocus(RowSurface& surface);

}  // namespace linewatch::desktop
