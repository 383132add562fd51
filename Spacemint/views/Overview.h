#pragma once

#include "Spacemint/views/ChangeRows.h"
#include "Spacemint/views/ItemRows.h"

#include <QStringList>
#include <QTimeZone>

namespace spacemint {

/// The tab with what grew since an earlier scan and where space can be freed. Main thread only.
class Overview : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  /// Whether the tab is on the screen now. The view sets it.
  Q_PROPERTY(bool isSeen MEMBER isSeen_ WRITE setSeen)
  Q_PROPERTY(spacemint::ItemRows* growing READ growing CONSTANT)
  Q_PROPERTY(QString fullIn READ fullIn NOTIFY growingChanged)
  Q_PROPERTY(spacemint::ItemRows* growth READ growth CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* firstGrowth READ firstGrowth CONSTANT)
  Q_PROPERTY(int growthCount READ growthCount NOTIFY changed)
  Q_PROPERTY(QString freeChange READ freeChange NOTIFY changed)
  Q_PROPERTY(QStringList baselines READ baselines NOTIFY baselinesChanged)
  Q_PROPERTY(int baselineIndex READ baselineIndex NOTIFY baselinesChanged)
  Q_PROPERTY(bool hasAccess READ hasAccess NOTIFY changed)
  Q_PROPERTY(QString accessTitle READ accessTitle CONSTANT)
  Q_PROPERTY(QString accessLine READ accessLine CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* trash READ trash CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* backups READ backups CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* suggestions READ suggestions CONSTANT)
 public:
  explicit Overview(const UiHost& host);

  void setSeen(bool isSeen);
  /// What grows now.
  ItemRows* growing() { return &growing_; }
  /// When the disk is full at this pace; empty if that is not known.
  const QString& fullIn() const { return fullIn_; }
  /// What changed, as a tree.
  ItemRows* growth() { return &growth_; }
  /// How many items of the scanned folder grew.
  int growthCount() const { return static_cast<int>(changes_.count()); }
  /// `growth` with only the largest of these items, until the person asks for all.
  ItemRows* firstGrowth() { return &firstGrowth_; }
  const QString& freeChange() const { return freeChange_; }
  /// The earlier scans, newest first.
  const QStringList& baselines() const { return baselines_; }
  /// The index of the scan that the newest one is compared with; -1 for none.
  int baselineIndex() const { return baselineIndex_; }
  bool hasAccess() const { return host_.model.hasFullDiskAccess(); }
  QString accessTitle() const;
  QString accessLine() const;
  ItemRows* trash() { return &trash_; }
  ItemRows* backups() { return &backups_; }
  ItemRows* suggestions() { return &suggestions_; }

  /// The title of the button that shows all of `growth` or less of it; empty when all of it fits.
  Q_INVOKABLE QString growthToggle(int count, bool showsAll) const;
  Q_INVOKABLE void chooseBaseline(int index);
  Q_INVOKABLE void openAccessSettings() const;

 Q_SIGNALS:
  void changed();
  void growingChanged();
  void baselinesChanged();

 private:
  void update();
  void updateGrowing();
  void updateBaselines();
  std::vector<ListItem> trashItems() const;
  std::vector<ListItem> backupItems() const;
  std::vector<ListItem> suggestionItems() const;
  bool isDirectory(const std::string& path) const;
  Date now() const { return host_.desktop.clock.now(); }

  const UiHost& host_;
  bool isSeen_ = false;
  ItemRows growing_;
  QString fullIn_;
  ItemRows growth_;
  ItemRows firstGrowth_;
  ChangeRows changes_;
  QString freeChange_;
  std::vector<SnapshotStore::Entry> entries_;
  QStringList baselines_;
  int baselineIndex_ = -1;
  ItemRows trash_;
  ItemRows backups_;
  ItemRows suggestions_;
};

}  // namespace spacemint
