#pragma once

#include "Spacemint/views/ItemRows.h"

#include <optional>

namespace spacemint {

/// One folder of the scan, and the items in it. Main thread only.
class Folders : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(spacemint::ItemRows* content READ content CONSTANT)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString sizeText READ sizeText NOTIFY changed)
  Q_PROPERTY(QString parentTitle READ parentTitle NOTIFY changed)

 public:
  explicit Folders(const UiHost& host);

  ItemRows* content() { return &content_; }
  const QString& title() const { return title_; }
  const QString& sizeText() const { return sizeText_; }
  /// The title of the parent folder; empty for the folder that was scanned.
  const QString& parentTitle() const { return parentTitle_; }

  Q_INVOKABLE void goBack();
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
};

}  // namespace spacemint
