#include "ui_kit/LastInput.h"

#include <QEvent>
#include <QGuiApplication>

namespace spacemint {

LastInput::LastInput(QObject* parent) : QObject(parent) {
  qGuiApp->installEventFilter(this);
}

bool LastInput::eventFilter(QObject* watched, QEvent* event) {
  const bool isKeyboard = event->type() == QEvent::KeyPress;
  const bool isPointer = event->type() == QEvent::MouseMove || event->type() == QEvent::MouseButtonPress ||
                         event->type() == QEvent::TouchBegin;
  if ((isKeyboard || isPointer) && watched->isWindowType() && isKeyboard != isKeyboard_) {
    isKeyboard_ = isKeyboard;
    Q_EMIT isKeyboardChanged();
  }
  return false;
}

}  // namespace spacemint
