#pragma once

namespace linewatch::desktop {

class DetailsColumn;

/// Shows the parts of every DetailsColumn to assistive technology in the order of the screen. Qt would show
/// them in the order in which their widgets were made. May be called several times.
void installColumnAccessibility();

/// Tells assistive technology that other parts are shown.
void announceParts(DetailsColumn& column);

}  // namespace linewatch::desktop
