#pragma once

#include "Spacemint/views/Developer.h"
#include "Spacemint/views/Explorer.h"
#include "Spacemint/views/Files.h"
#include "Spacemint/views/Folders.h"
#include "Spacemint/views/FreeLine.h"
#include "Spacemint/views/NotInFiles.h"
#include "Spacemint/views/Overview.h"
#include "Spacemint/views/Page.h"
#include "Spacemint/views/Question.h"
#include "Spacemint/views/ScanControl.h"
#include "Spacemint/views/ScanSource.h"
#include "Spacemint/views/SettingsForm.h"
#include "Spacemint/views/Summary.h"
#include "Spacemint/views/UiHost.h"

#include <QQmlEngine>

namespace spacemint {

/// The root of the objects that the QML files bind to. The panel and the window share it. Main thread only.
class Ui : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made once by the application")
  // The page around the tabs.
  Q_PROPERTY(spacemint::Page* page READ page CONSTANT)
  Q_PROPERTY(spacemint::Summary* summary READ summary CONSTANT)
  Q_PROPERTY(spacemint::ScanControl* scan READ scan CONSTANT)
  Q_PROPERTY(spacemint::ScanSource* source READ source CONSTANT)
  Q_PROPERTY(spacemint::Question* confirmation READ confirmation CONSTANT)
  Q_PROPERTY(spacemint::SettingsForm* settings READ settings CONSTANT)
  // The tabs.
  Q_PROPERTY(spacemint::Overview* overview READ overview CONSTANT)
  Q_PROPERTY(spacemint::SpaceHistory* spaceHistory READ spaceHistory CONSTANT)
  Q_PROPERTY(spacemint::NotInFiles* notInFiles READ notInFiles CONSTANT)
  Q_PROPERTY(spacemint::Folders* folders READ folders CONSTANT)
  Q_PROPERTY(spacemint::Explorer* explorer READ explorer CONSTANT)
  Q_PROPERTY(spacemint::Files* files READ files CONSTANT)
  Q_PROPERTY(spacemint::Developer* developer READ developer CONSTANT)
 public:
  explicit Ui(UiHost host);

  Page* page() { return &page_; }
  Summary* summary() { return &summary_; }
  ScanControl* scan() { return &scan_; }
  ScanSource* source() { return &source_; }
  Question* confirmation() { return &confirmation_; }
  SettingsForm* settings() { return &settings_; }
  Overview* overview() { return &overview_; }
  SpaceHistory* spaceHistory() { return &spaceHistory_; }
  NotInFiles* notInFiles() { return &notInFiles_; }
  Folders* folders() { return &folders_; }
  Explorer* explorer() { return &explorer_; }
  Files* files() { return &files_; }
  Developer* developer() { return &developer_; }

  Q_INVOKABLE void quit() const { host_.quit(); }
  Q_INVOKABLE void about() const { host_.about(); }

 private:
  UiHost host_;
  Page page_{host_};
  Summary summary_{host_};
  ScanControl scan_{host_};
  ScanSource source_{host_};
  Question confirmation_{host_};
  SettingsForm settings_{host_};
  Overview overview_{host_};
  SpaceHistory spaceHistory_{host_};
  NotInFiles notInFiles_{host_};
  Folders folders_{host_};
  Explorer explorer_{host_};
  Files files_{host_};
  Developer developer_{host_};
};

}  // namespace spacemint
