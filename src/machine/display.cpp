#include "machine/display.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace linewatch {

namespace {

/// Whether a server listens on the socket. A path with a zero byte at its start is an abstract socket.
bool listens(std::string_view path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, path.data(), path.size());
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
  const bool answers =
      descriptor >= 0 && connect(descriptor, reinterpret_cast<const sockaddr*>(&address), length) == 0;
  close(descriptor);
  return answers;
}

bool waylandAnswers(const std::string& display, const std::string& runtimeFolder) {
  if (display.empty()) return false;
  return listens(display.front() == '/' ? display : runtimeFolder + "/" + display);
}

/// Whether the X display "HOST:NUMBER.SCREEN" answers. A display of this machine has no host, or the host
/// "unix". Displays of other machines are assumed to answer.
bool xAnswers(const std::string& display) {
  const std::size_t colon = display.rfind(':');
  if (colon == std::string::npos) return false;
  const std::string host = display.substr(0, colon);
  if (!host.empty() && host != "unix") return true;
  const std::string number = display.substr(colon + 1, display.find('.', colon) - colon - 1);
  const std::string path = "/tmp/.X11-unix/X" + number;
  return listens(path) || listens(std::string(1, '\0') + path);
}

}  // namespace

bool hasDisplay(const Environment& environment) {
  if (const std::string platform = valueOf(environment, "QT_QPA_PLATFORM");
      !platform.empty() && !platform.starts_with("xcb") && !platform.starts_with("wayland"))
    return true;
  return waylandAnswers(valueOf(environment, "WAYLAND_DISPLAY"), valueOf(environment, "XDG_RUNTIME_DIR")) ||
         xAnswers(valueOf(environment, "DISPLAY"));
}

}  // namespace linewatch
