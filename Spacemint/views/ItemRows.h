#pragma once

#include "Spacemint/views/ItemActions.h"
#include "Spacemint/views/ItemRow.h"

#include <QAbstractListModel>
#include <QQmlEngine>

#include <memory>
#include <vector>

namespace spacemint {

/// Rows for a view, and what can be done with each. A view names a row by its role `rowId`, which stays that
/// row's for as long as the row is there, whatever happens around it. Main thread only.
class ItemRows : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(int count READ count NOTIFY countChanged)
 public:
  enum Role {
    RowIdRole = Qt::UserRole,
    TitleRole,
    SubtitleRole,
    SizeTextRole,
    SymbolRole,
    FractionRole,
    HasPathRole,
    IsDirectoryRole,
    ShowsChevronRole,
    CanTrashRole,
    IsInTrashRole,
    ButtonTitleRole,
    BusyTitleRole,
    IsBusyRole,
    PartsRole
  };
  Q_ENUM(Role)

  explicit ItemRows(const ItemActions& actions, QObject* parent = nullptr);
  ~ItemRows() override;

  int count() const { return static_cast<int>(entries_.size()); }
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// Puts these in the place of the rows that are there. Those that stay keep their ids and tell what is new
  /// about them; where few stay it is another list, and is reset.
  void assign(std::vector<ItemRow> rows);

  // Each does nothing for a row that is gone.

  Q_INVOKABLE void reveal(int rowId) const;
  Q_INVOKABLE void copyPath(int rowId) const;
  Q_INVOKABLE void showInFolders(int rowId) const;
  Q_INVOKABLE void remove(int rowId) const;
  Q_INVOKABLE void pressButton(int rowId) const;

 Q_SIGNALS:
  void countChanged();

 private:
  struct Entry {
    int id = 0;
    ItemRow row;
    std::unique_ptr<ItemRows> parts;
  };
  struct Plan;

  const ItemRow* find(int rowId) const;
  Plan planFor(std::vector<ItemRow> rows);
  void removeOthers(const Plan& plan);
  void insertOthers(Plan& plan);
  QVariant text(const ItemRow& row, int role) const;
  void tellBusy();

  const ItemActions& actions_;
  std::vector<Entry> entries_;
  int lastId_ = 0;
};

}  // namespace spacemint
