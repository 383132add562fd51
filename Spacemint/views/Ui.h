#pragma once

#include "Spacemint/views/Developer.h"
#include "Spacemint/views/Files.h"
#include "Spacemint/views/Folders.h"
#include "Spacemint/views/ItemActions.h"
#include "Spacemint/views/Overview.h"
#include "Spacemint/views/UiHost.h"

#include <QQmlEngine>

namespace spacemint {

/// The model as the views see it: one object for both the panel and the window. Main thread only.
class Ui : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made once by the application")
  // The tabs.
  Q_PROPERTY(spacemint::Overview* overview READ overview CONSTANT)
  Q_PROPERTY(spacemint::Folders* folders READ folders CONSTANT)
  Q_PROPERTY(spacemint::Files* files READ files CONSTANT)
  Q_PROPERTY(spacemint::Developer* developer READ developer CONSTANT)
 public:
  explicit Ui(UiHost host);

  Overview* overview() { return &overview_; }
  Folders* folders() { return &folders_; }
  Files* files() { return &files_; }
  Developer* developer() { return &developer_; }

  Q_INVOKABLE void quit() const { host_.quit(); }

 private:
  UiHost host_;
  ItemActions itemActions_{host_};
  Overview overview_{itemActions_};
  Folders folders_{itemActions_};
  Files files_{itemActions_};
  Developer developer_{itemActions_};
};

}  // namespace spacemint
