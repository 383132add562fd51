#include "Spacemint/shell/Windows.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPropertyAnimation>
#include <QQuickItem>
#include <QScreen>

#include <tuple>

namespace spacemint {

namespace {

// In milliseconds.
constexpr qint64 settlingTime = 100;
constexpr std::string_view placeKey = "SpacemintMainWindow";
// Of a window whose place was stored without its size.
constexpr QSize former{460, 722};
// Of the first window: the list beside its map.
constexpr QSize first{1080, 720};
constexpr QSize smallest{400, 480};

QVariantMap with(QVariantMap properties, bool windowed) {
  properties[QStringLiteral("windowed")] = windowed;
  return properties;
}

std::vector<QRect> usableAreas() {
  std::vector<QRect> areas;
  for (const QScreen* screen : QGuiApplication::screens()) areas.push_back(screen->availableGeometry());
  return areas;
}

}  // namespace

InterfaceWindow::InterfaceWindow(QQmlEngine& engine, const QVariantMap& properties)
    : QQuickView(&engine, nullptr) {
  setResizeMode(QQuickView::SizeRootObjectToView);
  setInitialProperties(properties);
  setSource(QUrl{QStringLiteral("qrc:/qt/qml/Spacemint/Shell/InterfaceRoot.qml")});
  setTitle(QStringLiteral("Spacemint"));
}

void InterfaceWindow::showAbout() {
  rootObject()->setProperty("showingAbout", true);
}

void InterfaceWindow::keyPressEvent(QKeyEvent* event) {
  QQuickView::keyPressEvent(event);
  if (event->isAccepted()) return;
  if (event->key() == Qt::Key_Escape && onCancel) {
    onCancel();
    event->accept();
  } else if (onKey && onKey(*event)) {
    event->accept();
  }
}

DropdownPanel::DropdownPanel(QQmlEngine& engine, QVariantMap properties)
    : InterfaceWindow(engine, with(std::move(properties), false)) {
  setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
  setColor(Qt::transparent);
  connect(this, &QWindow::activeChanged, this, [this] {
    if (!isVisible() || isActive()) return;
    // The previously focused window may briefly regain the focus while the panel is being shown.
    if (opened_.hasExpired(settlingTime)) {
      Q_EMIT left();
    } else {
      requestActivate();
    }
  });
}

// Hides before the destruction, so that listeners still see a DropdownPanel.
DropdownPanel::~DropdownPanel() {
  hide();
}

void DropdownPanel::open(const QRect& place, Look look) {
  constexpr int duration = 120;
  setGeometry(place);
  if (look.fades) setOpacity(0);
  rootObject()->setProperty("rounded", look.isRounded);
  showInFront();
  if (!look.fades) return;
  auto* fade = new QPropertyAnimation(this, "opacity", this);
  fade->setDuration(duration);
  fade->setEndValue(1.0);
  fade->start(QAbstractAnimation::DeleteWhenStopped);
}

bool DropdownPanel::open(const LayerPlacement& placement, LayerShell& layers) {
  if (!catcher_) {
    catcher_ = std::make_unique<ClickCatcher>();
    connect(catcher_.get(), &ClickCatcher::clicked, this, &DropdownPanel::left);
    connect(this, &QWindow::visibleChanged, catcher_.get(), [this](bool isShown) {
      if (!isShown) catcher_->hide();
    });
  }
  const Qt::Edges all = Qt::TopEdge | Qt::BottomEdge | Qt::LeftEdge | Qt::RightEdge;
  if (!layers.put(*catcher_, {.edges = all, .margins = {}}) ||
      !layers.put(*this, {.edges = placement.edges, .margins = placement.margins, .takesKeys = true})) {
    return false;
  }
  catcher_->show();
  resize(placement.size);
  showInFront();
  return true;
}

void DropdownPanel::showInFront() {
  opened_.start();
  show();
  raise();
  requestActivate();
}

MainWindow::MainWindow(QQmlEngine& engine, QVariantMap properties, DefaultsStore& defaults)
    : InterfaceWindow(engine, with(std::move(properties), true)),
      defaults_(defaults) {
  placeOnScreen();
  connect(this, &QWindow::activeChanged, this, [this] {
    if (isActive()) Q_EMIT activated();
  });
  connect(this, &QWindow::visibleChanged, this, [this](bool isShown) {
    if (!isShown) keepPlace();
  });
}

// Hides before the destruction: a destroyed window has no place to store.
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

// As the user left it, but never larger than the screen's usable area, and large enough for every view.
void MainWindow::placeOnScreen() {
  const auto areas = usableAreas();
  if (areas.empty()) return;
  const auto kept = windowPlace(defaults_.string(placeKey).value_or(""), former, areas);
  constexpr int titleBar = 40;
  const QRect& area = kept ? kept->area : areas.front();
  const QSize room = area.size() - QSize{0, titleBar};
  setMinimumSize(smallest.boundedTo(room));
  const QSize usual = first.boundedTo(room * 0.9);
  const QSize size = (kept ? kept->place.size() : usual).expandedTo(smallest).boundedTo(room);
  resize(size);
  setPosition(
      kept ? kept->place.topLeft()
           : QRect{QPoint{}, size}.translated(area.center() - QRect{QPoint{}, size}.center()).topLeft());
}

void MainWindow::keepPlace() {
  if (!handle() || (windowStates() & (Qt::WindowMaximized | Qt::WindowFullScreen))) return;
  const std::string text = textOf(geometry());
  // If the store cannot be written, only the place is lost.
  if (defaults_.string(placeKey) != text) std::ignore = defaults_.set(placeKey, text);
}

}  // namespace spacemint
