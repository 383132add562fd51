#include "Spacemint/desktop/linux/Wayland.h"

#include <QGuiApplication>

#include <wayland-client.h>

#include <memory>
#include <string_view>

namespace spacemint {

namespace {

template <auto release>
struct Releaser {
  template <class Object>
  void operator()(Object* object) const {
    release(object);
  }
};
using Display = std::unique_ptr<wl_display, Releaser<wl_display_disconnect>>;
using Registry = std::unique_ptr<wl_registry, Releaser<wl_registry_destroy>>;

void globalAppeared(void* found, wl_registry* /*registry*/, std::uint32_t /*name*/, const char* interface,
                    std::uint32_t /*version*/) {
  if (interface == std::string_view{"zwlr_layer_shell_v1"}) *static_cast<bool*>(found) = true;
}

void globalVanished(void* /*found*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}

constexpr wl_registry_listener listener{.global = globalAppeared, .global_remove = globalVanished};

}  // namespace

bool isOnWayland() {
  return QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
}

bool hasLayerShell() {
  const Display display{wl_display_connect(nullptr)};
  if (!display) return false;
  const Registry registry{wl_display_get_registry(display.get())};
  bool isFound = false;
  wl_registry_add_listener(registry.get(), &listener, &isFound);
  return wl_display_roundtrip(display.get()) >= 0 && isFound;
}

}  // namespace spacemint
