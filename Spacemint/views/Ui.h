#pragma once

#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/model/AppModel.h"

#include <QQmlEngine>

#include <functional>
#include <string>

namespace spacemint {

/// What the views stand on. All of it outlives them.
struct UiHost {
  AppModel& model;
  Desktop desktop;
  std::string home;
  std::string locale;
  /// Ends the application.
  std::function<void()> quit;
};

/// The model as the views see it: one object for both the panel and the window. Main thread only.
class Ui : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made once by the application")
 public:
  explicit Ui(UiHost host);

  Q_INVOKABLE void quit() const { host_.quit(); }

 private:
  UiHost host_;
};

}  // namespace spacemint
