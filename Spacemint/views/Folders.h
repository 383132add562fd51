#pragma once

#include "Spacemint/views/Section.h"

#include <optional>

namespace spacemint {

/// One folder of the scan, and what takes space in it. Main thread only.
class Folders : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(spacemint::Section* content READ content CONSTANT)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString sizeText READ sizeText NOTIFY changed)
  Q_PROPERTY(QString parentTitle READ parentTitle NOTIFY changed)
 public:
  explicit Folders(const ItemActions& actions);

  Section* content() { return &content_; }
  const QString& title() const { return title_; }
  const QString& sizeText() const { return sizeText_; }
  /// The folder that this one lies in; empty for the one that was scanned.
  const QString& parentTitle() const { return parentTitle_; }

  Q_INVOKABLE void goBack();
  Q_INVOKABLE void reveal() const;

 Q_SIGNALS:
  void changed();
  /// Another folder is shown than before; `row` is the one over which one came out of that, or the first.
  void opened(int row);

 private:
  void update();

  const ItemActions& actions_;
  Section content_;
  std::string path_;
  std::optional<std::string> parent_;
  QString title_;
  QString sizeText_;
  QString parentTitle_;
};

}  // namespace spacemint
