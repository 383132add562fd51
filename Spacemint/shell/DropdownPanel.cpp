#include "Spacemint/shell/DropdownPanel.h"

#include <QPropertyAnimation>
#include <QQuickItem>

namespace spacemint {

namespace {

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
    if (isVisible() && !isActive()) Q_EMIT left();
  });
}

// Whoever follows the panel hears of that while it is still one.
DropdownPanel::~DropdownPanel() {
  hide();
}

void DropdownPanel::open(const QRect& place, Look look) {
  constexpr int duration = 120;
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
