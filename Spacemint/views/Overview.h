#pragma once

#include "Spacemint/views/Section.h"

#include <QStringList>

namespace spacemint {

/// What grew since an earlier scan, and where space can be freed. Main thread only.
class Overview : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(spacemint::Section* growth READ growth CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* firstGrowth READ firstGrowth CONSTANT)
  Q_PROPERTY(QString freeChange READ freeChange NOTIFY changed)
  Q_PROPERTY(QStringList baselines READ baselines NOTIFY baselinesChanged)
  Q_PROPERTY(int baselineIndex READ baselineIndex NOTIFY baselinesChanged)
  Q_PROPERTY(bool hasAccess READ hasAccess NOTIFY changed)
  Q_PROPERTY(QString accessTitle READ accessTitle CONSTANT)
  Q_PROPERTY(QString accessLine READ accessLine CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* trash READ trash CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* backups READ backups CONSTANT)
  Q_PROPERTY(spacemint::Section* suggestions READ suggestions CONSTANT)
 public:
  explicit Overview(const ItemActions& actions);

  Section* growth() { return &growth_; }
  /// What is seen of it before all is asked for.
  ItemRows* firstGrowth() { return &firstGrowth_; }
  const QString& freeChange() const { return freeChange_; }
  /// The earlier scans, newest first.
  const QStringList& baselines() const { return baselines_; }
  /// The one that is compared with; -1 for none.
  int baselineIndex() const { return baselineIndex_; }
  bool hasAccess() const { return host_.model.hasFullDiskAccess(); }
  QString accessTitle() const;
  QString accessLine() const;
  ItemRows* trash() { return &trash_; }
  ItemRows* backups() { return &backups_; }
  Section* suggestions() { return &suggestions_; }

  Q_INVOKABLE QString growthToggle(int count, bool showsAll) const;
  Q_INVOKABLE void chooseBaseline(int index);
  Q_INVOKABLE void openAccessSettings() const;

 Q_SIGNALS:
  void changed();
  void baselinesChanged();

 private:
  void update();
  void updateBaselines();
  std::vector<ItemRow> growthRows() const;
  std::vector<ItemRow> trashRows() const;
  std::vector<ItemRow> backupRows() const;
  std::vector<ItemRow> suggestionRows() const;
  bool isDirectory(const std::string& path) const;
  Date now() const { return host_.desktop.clock.now(); }

  const UiHost& host_;
  Section growth_;
  ItemRows firstGrowth_;
  QString freeChange_;
  std::vector<SnapshotStore::Entry> entries_;
  QStringList baselines_;
  int baselineIndex_ = -1;
  ItemRows trash_;
  ItemRows backups_;
  Section suggestions_;
};

}  // namespace spacemint
