#pragma once

#include "ui_kit/Colours.h"

#include <QColor>
#include <QFont>
#include <QQmlEngine>

namespace spacemint {

/// The colours and fonts of the interface, for QML. All change with `isDark`.
class Theme : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  Q_PROPERTY(bool isDark READ isDark WRITE setDark NOTIFY changed)
  Q_PROPERTY(QColor border READ border NOTIFY changed)
 public:
  using QObject::QObject;

  bool isDark() const { return isDark_; }
  void setDark(bool isDark);
  QColor border() const { return resolve("border"); }

 Q_SIGNALS:
  void changed();

 private:
  QColor resolve(const char* name) const;

  bool isDark_ = false;
};

}  // namespace spacemint
