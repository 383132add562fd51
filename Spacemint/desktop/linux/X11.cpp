#include "Spacemint/desktop/linux/X11.h"

#include "core/base/Log.h"

#include <QGuiApplication>
#include <QRect>
#include <QSocketNotifier>
#include <QWindow>

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace spacemint {

namespace {

// What xcb hands out is freed with free().
template <typename T>
using Reply = std::unique_ptr<T, decltype([](T* reply) { std::free(reply); })>;
using Connection =
    std::unique_ptr<xcb_connection_t,
                    decltype([](xcb_connection_t* connection) { xcb_disconnect(connection); })>;

// The compositor of the first screen owns this selection.
constexpr std::string_view compositorSelection = "_NET_WM_CM_S0";

// Null where the application does not run on X11.
xcb_connection_t* connectionOfQt() {
  const auto* x = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
  return x == nullptr ? nullptr : x->connection();
}

bool isComposited(xcb_connection_t* connection) {
  const auto naming = xcb_intern_atom(connection, 0, compositorSelection.size(), compositorSelection.data());
  const Reply<xcb_intern_atom_reply_t> name{xcb_intern_atom_reply(connection, naming, nullptr)};
  if (!name) return false;
  const auto asking = xcb_get_selection_owner(connection, name->atom);
  const Reply<xcb_get_selection_owner_reply_t> answer{
      xcb_get_selection_owner_reply(connection, asking, nullptr)};
  return answer && answer->owner != XCB_WINDOW_NONE;
}

// Before version 2.1, a program with a pointer grab got the raw events alone.
bool hasRawEvents(xcb_connection_t* connection) {
  constexpr std::uint16_t major = 2;
  constexpr std::uint16_t minor = 2;
  const auto asking = xcb_input_xi_query_version(connection, major, minor);
  const Reply<xcb_input_xi_query_version_reply_t> version{
      xcb_input_xi_query_version_reply(connection, asking, nullptr)};
  return version && std::pair{version->major_version, version->minor_version} >= std::pair{major, minor};
}

void selectRawButtons(xcb_connection_t* connection) {
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
  } const selected{{.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1},
                   XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE};
  for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection)); screen.rem > 0;
       xcb_screen_next(&screen)) {
    xcb_input_xi_select_events(connection, screen.data->root, 1, &selected.head);
  }
  xcb_flush(connection);
}

// Raw events carry no place. True also where the window is gone.
bool isPointerIn(xcb_connection_t* connection, xcb_window_t window) {
  const auto pointing = xcb_query_pointer(connection, window);
  const auto measuring = xcb_get_geometry(connection, window);
  const Reply<xcb_query_pointer_reply_t> pointer{xcb_query_pointer_reply(connection, pointing, nullptr)};
  const Reply<xcb_get_geometry_reply_t> size{xcb_get_geometry_reply(connection, measuring, nullptr)};
  if (!pointer || !size) return true;
  return pointer->same_screen &&
         QRect{0, 0, size->width, size->height}.contains(pointer->win_x, pointer->win_y);
}

bool isWheel(std::uint32_t button) {
  constexpr std::uint32_t up = 4;
  constexpr std::uint32_t right = 7;
  return button >= up && button <= right;
}

// Has a connection of its own: the X server keeps one selection of raw events for each connection, and Qt may
// use the selection of its connection.
class ClickWatch final : public OutsideClicks::Watch {
 public:
  ClickWatch(Connection connection, xcb_window_t window, std::function<void()> clicked)
      : connection_(std::move(connection)),
        window_(window),
        clicked_(std::move(clicked)),
        notifier_(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { readEvents(); });
  }

 private:
  void readEvents() {
    bool isClicked = false;
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
      isClicked = take(*event) || isClicked;
    }
    if (xcb_connection_has_error(connection_.get()) != 0) notifier_.setEnabled(false);
    // A copy, because the function may destroy this object.
    if (isClicked) std::function{clicked_}();
  }

  // Whether a click outside is complete. The press that opened the window was before the watch, so that its
  // release does not count.
  bool take(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_GE_GENERIC) return false;
    const auto& raw = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
    if (isWheel(raw.detail)) return false;
    if (raw.event_type == XCB_INPUT_RAW_BUTTON_PRESS) {
      isPressedOutside_ = !isPointerIn(connection_.get(), window_);
      return false;
    }
    return raw.event_type == XCB_INPUT_RAW_BUTTON_RELEASE && std::exchange(isPressedOutside_, false);
  }

  Connection connection_;
  xcb_window_t window_;
  std::function<void()> clicked_;
  QSocketNotifier notifier_;
  bool isPressedOutside_ = false;
};

}  // namespace

bool isScreenComposited() {
  xcb_connection_t* connection = connectionOfQt();
  return connection == nullptr || isComposited(connection);
}

std::unique_ptr<OutsideClicks::Watch> X11OutsideClicks::watch(const QWindow& window,
                                                              std::function<void()> clicked) {
  if (connectionOfQt() == nullptr) return nullptr;
  Connection connection{xcb_connect(nullptr, nullptr)};
  if (xcb_connection_has_error(connection.get()) != 0 || !hasRawEvents(connection.get())) {
    log(LogLevel::info, "the X server reports no clicks beside the panel: it has no XInput 2.2");
    return nullptr;
  }
  selectRawButtons(connection.get());
  return std::make_unique<ClickWatch>(std::move(connection), static_cast<xcb_window_t>(window.winId()),
                                      std::move(clicked));
}

}  // namespace spacemint
