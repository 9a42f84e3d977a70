#pragma once

#include <cstdint>
#include <string_view>

struct xcb_connection_t;

namespace linewatch::desktop {

/// The program's connection to its X11 display; null on other displays. Needs a QGuiApplication.
xcb_connection_t* x11Connection();
/// The number of the name on the display; 0 after an error. Waits for the display.
std::uint32_t x11Atom(xcb_connection_t* connection, std::string_view name);
/// The window that owns the selection, e.g. the tray; 0 if there is none. Waits for the display.
std::uint32_t x11SelectionOwner(xcb_connection_t* connection, std::uint32_t selection);

}  // namespace linewatch::desktop
