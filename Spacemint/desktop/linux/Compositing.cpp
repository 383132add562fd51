#include "Spacemint/desktop/linux/Compositing.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace spacemint {

namespace {

template <typename T>
using Reply = std::unique_ptr<T, decltype([](T* reply) { std::free(reply); })>;

// Whoever composes the first screen owns this.
constexpr std::string_view selection = "_NET_WM_CM_S0";

bool isComposited(xcb_connection_t* connection) {
  const auto naming = xcb_intern_atom(connection, 0, selection.size(), selection.data());
  const Reply<xcb_intern_atom_reply_t> name{xcb_intern_atom_reply(connection, naming, nullptr)};
  if (!name) return false;
  const auto asking = xcb_get_selection_owner(connection, name->atom);
  const Reply<xcb_get_selection_owner_reply_t> answer{
      xcb_get_selection_owner_reply(connection, asking, nullptr)};
  return answer && answer->owner != XCB_WINDOW_NONE;
}

}  // namespace

bool isScreenComposited() {
  const auto* x = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
  return x == nullptr || isComposited(x->connection());
}

}  // namespace spacemint
