#include "Spacemint/shell/MainWindow.h"

#include "Spacemint/shell/WindowPlace.h"

#include <QGuiApplication>
#include <QScreen>

namespace spacemint {

namespace {

constexpr std::string_view placeKey = "SpacemintMainWindow";
constexpr QSize designed{460, 722};

QVariantMap inWindow(QVariantMap properties) {
  properties[QStringLiteral("windowed")] = true;
  return properties;
}

std::vector<QRect> usableAreas() {
  std::vector<QRect> areas;
  for (const QScreen* screen : QGuiApplication::screens()) areas.push_back(screen->availableGeometry());
  return areas;
}

}  // namespace

MainWindow::MainWindow(QQmlEngine& engine, QVariantMap properties, DefaultsStore& defaults)
    : InterfaceWindow(engine, inWindow(std::move(properties))),
      defaults_(defaults) {
  setTitle(QStringLiteral("Spacemint"));
  placeOnScreen();
  connect(this, &QWindow::activeChanged, this, [this] {
    if (isActive()) Q_EMIT activated();
  });
  connect(this, &QWindow::visibleChanged, this, [this](bool isShown) {
    if (!isShown) keepPlace();
  });
}

// Its place is kept while it has one.
MainWindow::~MainWindow() {
  hide();
}

void MainWindow::open() {
  if (windowStates() & Qt::WindowMinimized) {
    showNormal();
  } else {
    show();
  }
  raise();
  requestActivate();
}

bool MainWindow::event(QEvent* event) {
  const bool isClosing = event->type() == QEvent::Close;
  if (isClosing) keepPlace();
  const bool isHandled = InterfaceWindow::event(event);
  if (isClosing) Q_EMIT closed();
  return isHandled;
}

// Of one size, like the panel, but never higher than the screen leaves room for.
void MainWindow::placeOnScreen() {
  const auto areas = usableAreas();
  if (areas.empty()) return;
  const auto kept = windowPlace(defaults_.string(placeKey).value_or(""), designed, areas);
  constexpr int titleBar = 40;
  const QRect& area = kept ? kept->area : areas.front();
  const QSize size = designed.boundedTo(area.size() - QSize{0, titleBar});
  setMinimumSize(size);
  setMaximumSize(size);
  resize(size);
  setPosition(
      kept ? kept->position
           : QRect{QPoint{}, size}.translated(area.center() - QRect{QPoint{}, size}.center()).topLeft());
}

void MainWindow::keepPlace() {
  if (!handle()) return;
  const std::string text = textOf(position());
  // An unwritable store costs no more than the place.
  if (defaults_.string(placeKey) != text) static_cast<void>(defaults_.set(placeKey, text));
}

}  // namespace spacemint
