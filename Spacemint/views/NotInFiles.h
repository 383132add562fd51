#pragma once

#include "Spacemint/views/ItemRows.h"
#include "Spacemint/views/ShownFolder.h"

#include <string_view>

namespace spacemint {

/// Adds a row for all that the user excluded at or below the folder, and one for each volume and snapshot
/// that the scan did not enter there, or below it in folders too small to be listed.
void addLeftOut(std::vector<ListItem>& items, const UiHost& host, const ShownFolder& folder);

/// What takes the space that no file of the scan takes, first what can be changed.
std::vector<ListItem> notInFilesItems(const Account& account, const UiHost& host);

/// The id of the row that `addNotInFiles` adds.
inline constexpr std::string_view notInFilesId = "not in files";

/// Adds the last row of the list of a whole disk: what is in no file. If it is unfolded, what that consists
/// of follows. Adds nothing to other lists, and if everything is in files.
void addNotInFiles(std::vector<ListItem>& items, const UiHost& host, const ShownFolder& folder,
                   bool isUnfolded, std::function<void()> onUnfold);

/// The section with the space that no file of the scan takes. Main thread only.
class NotInFiles : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  /// There is enough of it for a section that opens by itself.
  Q_PROPERTY(bool matters READ matters NOTIFY changed)
  /// There is something to show: an account, or that it is read or could not be read.
  Q_PROPERTY(bool isKnown READ isKnown NOTIFY changed)
  Q_PROPERTY(QString size READ size NOTIFY changed)
  Q_PROPERTY(QString sum READ sum NOTIFY changed)
  /// The parts of the capacity in files, not in files, and elsewhere; what is missing to 1 is free.
  Q_PROPERTY(QList<double> shares READ shares NOTIFY changed)
  Q_PROPERTY(spacemint::ItemRows* rows READ rows CONSTANT)
 public:
  explicit NotInFiles(const UiHost& host);

  bool matters() const { return matters_; }
  bool isKnown() const;
  const QString& size() const { return size_; }
  const QString& sum() const { return sum_; }
  const QList<double>& shares() const { return shares_; }
  ItemRows* rows() { return &rows_; }

  /// Call when the section is about to be shown: reads an old account again.
  Q_INVOKABLE void refresh() { host_.model.account().refreshIfOld(); }

 Q_SIGNALS:
  void changed();

 private:
  void update();
  void show(const Account& account);

  const UiHost& host_;
  bool matters_ = false;
  QString size_;
  QString sum_;
  QList<double> shares_;
  ItemRows rows_;
};

}  // namespace spacemint
