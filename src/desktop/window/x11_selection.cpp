#include "desktop/window/x11_selection.h"

#include <QGuiApplication>
#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace linewatch::desktop {

namespace {

struct FreeLater {
  void operator()(void* answer) const { std::free(answer); }
};
template <class Answer>
using XcbAnswer = std::unique_ptr<Answer, FreeLater>;

}  // namespace

xcb_connection_t* x11Connection() {
  const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 == nullptr ? nullptr : x11->connection();
}

std::uint32_t x11Atom(xcb_connection_t* connection, std::string_view name) {
  const auto question =
      xcb_intern_atom(connection, /*only_if_exists=*/0, static_cast<std::uint16_t>(name.size()), name.data());
  const XcbAnswer<xcb_intern_atom_reply_t> answer(xcb_intern_atom_reply(connection, question, nullptr));
  return answer ? answer->atom : 0U;
}

std::uint32_t x11SelectionOwner(xcb_connection_t* connection, std::uint32_t selection) {
  const auto question = xcb_get_selection_owner(connection, selection);
  const XcbAnswer<xcb_get_selection_owner_reply_t> answer(
      xcb_get_selection_owner_reply(connection, question, nullptr));
  return answer ? answer->owner : 0U;
}

}  // namespace linewatch::desktop
