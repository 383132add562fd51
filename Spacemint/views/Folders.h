#pragma once

#include "Spacemint/views/ItemRows.h"

#include <QStringList>

#include <optional>

namespace spacemint {

/// By what the items of a folder are sorted.
enum class ItemOrder : std::uint8_t { bySize, byCount };

/// One folder of the scan, and the items in it. Main thread only.
class Folders : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(spacemint::ItemRows* content READ content CONSTANT)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString sizeText READ sizeText NOTIFY changed)
  Q_PROPERTY(QString parentTitle READ parentTitle NOTIFY changed)
  Q_PROPERTY(QStringList orders READ orders CONSTANT)
  /// The order of the items, among `orders`.
  Q_PROPERTY(int order READ order WRITE setOrder NOTIFY changed)

 public:
  explicit Folders(const UiHost& host);

  ItemRows* content() { return &content_; }
  const QString& title() const { return title_; }
  const QString& sizeText() const { return sizeText_; }
  /// The title of the parent folder; empty for the folder that was scanned.
  const QString& parentTitle() const { return parentTitle_; }
  static QStringList orders();
  int order() const { return static_cast<int>(order_); }
  void setOrder(int order);

  Q_INVOKABLE void goBack();
  /// The row of the folder's item at this index of the scan; -1 if there is none.
  Q_INVOKABLE int rowOf(int child) const;
  /// Unfolds the row for what is in no file. Returns its index; -1 if there is none.
  Q_INVOKABLE int unfoldNotInFiles();
  /// Shows the folder in the file manager.
  Q_INVOKABLE void reveal() const;

 Q_SIGNALS:
  void changed();
  /// Another folder is shown. `row` is the child that the person came back from, else 0.
  void opened(int row);

 private:
  void update();

  const UiHost& host_;
  ItemRows content_;
  std::string path_;
  std::optional<std::string> parent_;
  QString title_;
  QString sizeText_;
  QString parentTitle_;
  ItemOrder order_ = ItemOrder::bySize;
  bool isAccountUnfolded_ = false;
};

}  // namespace spacemint
