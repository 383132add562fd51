#pragma once

#include <QObject>
#include <QQmlEngine>

namespace spacemint {

/// Which device the person used last: the keyboard or the pointer. Lists mark the row that the keyboard is
/// at, or the row under the pointer, but never both. Main thread only, with a QGuiApplication.
class LastInput : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  Q_PROPERTY(bool isKeyboard READ isKeyboard NOTIFY isKeyboardChanged)

 public:
  explicit LastInput(QObject* parent = nullptr);

  bool isKeyboard() const { return isKeyboard_; }

 Q_SIGNALS:
  void isKeyboardChanged();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool isKeyboard_ = true;
};

}  // namespace spacemint
