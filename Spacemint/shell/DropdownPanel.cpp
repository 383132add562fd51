#include "Spacemint/shell/DropdownPanel.h"

#include <QPropertyAnimation>
#include <QQuickItem>

namespace spacemint {

namespace {

// In milliseconds.
constexpr qint64 settlingTime = 100;

QVariantMap inPanel(QVariantMap properties) {
  properties[QStringLiteral("windowed")] = false;
  return properties;
}

}  // namespace

DropdownPanel::DropdownPanel(QQmlEngine& engine, QVariantMap properties)
    : InterfaceWindow(engine, inPanel(std::move(properties))) {
  setTitle(QStringLiteral("Spacemint"));
  setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
  setColor(Qt::transparent);
  connect(this, &QWindow::activeChanged, this, [this] {
    if (!isVisible() || isActive()) return;
    // What had the keyboard before may be given it once more while the panel comes.
    if (opened_.hasExpired(settlingTime)) {
      Q_EMIT left();
    } else {
      requestActivate();
    }
  });
}

// Whoever follows the panel hears of that while it is still one.
DropdownPanel::~DropdownPanel() {
  hide();
}

void DropdownPanel::open(const QRect& place, Look look) {
  constexpr int duration = 120;
  opened_.start();
  setGeometry(place);
  setOpacity(look.fades ? 0 : 1);
  rootObject()->setProperty("rounded", look.isRounded);
  show();
  raise();
  requestActivate();
  if (!look.fades) return;
  auto* fade = new QPropertyAnimation(this, "opacity", this);
  fade->setDuration(duration);
  fade->setEndValue(1.0);
  fade->start(QAbstractAnimation::DeleteWhenStopped);
}

}  // namespace spacemint
