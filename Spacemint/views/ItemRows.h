#pragma once

#include "Spacemint/views/ListItem.h"
#include "Spacemint/views/UiHost.h"

#include <QAbstractListModel>
#include <QQmlEngine>

#include <memory>
#include <set>
#include <vector>

namespace spacemint {

/// What a list says besides its rows.
struct ListStatus {
  /// The text in place of the rows, or above them.
  std::string text = {};
  /// Whether the text is about something that still runs.
  bool isWaiting = false;
  /// False when there is nothing to show at all, not even the title of the list.
  bool isShown = true;
};

/// A list of items as a model for a view, with the text that stands in its place while it is empty, and with
/// what a person can do with each item. A view names a row by its role `rowId`. A row keeps its rowId for as
/// long as its item is in the list. Main thread only.
class ItemRows : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(int count READ count NOTIFY countChanged)
  /// Whether a row has a chevron, so that all rows need the column for it.
  Q_PROPERTY(bool hasChevrons READ hasChevrons NOTIFY statusChanged)
  Q_PROPERTY(QString text READ text NOTIFY statusChanged)
  Q_PROPERTY(bool isWaiting READ isWaiting NOTIFY statusChanged)
  Q_PROPERTY(bool isShown READ isShown NOTIFY statusChanged)
  /// Whether the items are on this computer. Others have no actions that need them.
  Q_PROPERTY(bool isOfHere READ isOfHere NOTIFY statusChanged)
  /// The rows that the user marked, to do something with all of them.
  Q_PROPERTY(int markedCount READ markedCount NOTIFY markedChanged)
  /// "3 selected · 1.2 GB"
  Q_PROPERTY(QString markedText READ markedText NOTIFY markedChanged)

 public:
  enum Role {
    RowIdRole = Qt::UserRole,
    TitleRole,
    SubtitleRole,
    SizeTextRole,
    SymbolRole,
    FractionRole,
    ChangeRole,
    HasShrunkRole,
    TagRole,
    DepthRole,
    UnfoldsRole,
    IsUnfoldedRole,
    HasPathRole,
    IsNamedRole,
    ShowsChevronRole,
    CanTrashRole,
    IsInTrashRole,
    ButtonTitleRole,
    BusyTitleRole,
    IsBusyRole,
    IsMarkedRole,
    PartsRole
  };
  Q_ENUM(Role)

  /// The host outlives this.
  explicit ItemRows(const UiHost& host, QObject* parent = nullptr);
  ~ItemRows() override;

  int count() const { return static_cast<int>(entries_.size()); }
  bool hasChevrons() const { return hasChevrons_; }
  const QString& text() const { return text_; }
  bool isWaiting() const { return isWaiting_; }
  bool isShown() const { return isShown_; }
  bool isOfHere() const { return host_.model.shown().isOfHere(); }
  int markedCount() const { return static_cast<int>(marked_.size()); }
  QString markedText() const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// The index of the row with this item; -1 if there is none.
  int indexOf(const std::string& itemId) const;
  /// The item of a row; null if the row is gone.
  const ListItem* itemOf(int rowId) const { return find(rowId); }
  /// The row id at an index; -1 if there is no such row.
  Q_INVOKABLE int rowIdAt(int index) const;

  /// Replaces the items. A row whose item id is in the new list keeps its rowId, and emits dataChanged if it
  /// looks different. If fewer than half of the rows stay, the model resets.
  void assign(std::vector<ListItem> items, const ListStatus& status = {});

  // The actions of the person. Each does nothing for a row that is gone.
  /// Shows the item in the file manager.
  Q_INVOKABLE void reveal(int rowId) const;
  /// Puts the path of the item on the clipboard.
  Q_INVOKABLE void copyPath(int rowId) const;
  /// Shows the folder, or the folder of the file, in the tab of folders.
  Q_INVOKABLE void showInFolders(int rowId) const;
  /// Asks whether to move the item to the Trash, or to delete it if it already is in the Trash.
  Q_INVOKABLE void remove(int rowId) const;
  /// Leaves the item out of scans.
  Q_INVOKABLE void leaveOut(int rowId) const;
  /// Marks the row, or takes the mark away. Rows whose items the list does not offer to remove have none.
  Q_INVOKABLE void toggleMark(int rowId);
  /// Marks the rows from the one where marking began to this one, and no others.
  Q_INVOKABLE void markTo(int rowId);
  Q_INVOKABLE void markAll();
  /// Takes all marks away; marking begins at this row.
  Q_INVOKABLE void unmarkAll(int rowId = 0);
  /// Asks once whether to remove all marked items.
  Q_INVOKABLE void removeMarked() const;
  Q_INVOKABLE void pressButton(int rowId) const;
  /// Shows the items that this one unfolds to, or hides them.
  Q_INVOKABLE void toggle(int rowId) const;

 Q_SIGNALS:
  void countChanged();
  void statusChanged();
  void markedChanged();

 private:
  struct Entry {
    int id = 0;
    ListItem item;
    std::unique_ptr<ItemRows> parts;
  };
  struct Plan;

  const ListItem* find(int rowId) const;
  void setMarked(std::set<int> rowIds);
  bool isBusy(const ListItem& item) const {
    return item.isGrowing || host_.model.cleanups().isRunning(item.id);
  }
  bool isInTrash(const ListItem& item) const { return host_.model.isInTrash(item.path); }
  bool canTrash(const ListItem& item) const;
  Plan planFor(std::vector<ListItem> items);
  void removeOthers(const Plan& plan);
  void insertOthers(Plan& plan);
  void setStatus(const ListStatus& status);
  QVariant text(const ListItem& item, int role) const;
  void announceBusy();
  void announceSource();

  const UiHost& host_;
  std::vector<Entry> entries_;
  int lastId_ = 0;
  std::set<int> marked_;
  int markedFrom_ = 0;
  bool hasChevrons_ = false;
  QString text_;
  bool isWaiting_ = false;
  bool isShown_ = true;
};

}  // namespace spacemint
