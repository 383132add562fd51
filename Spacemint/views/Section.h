#pragma once

#include "Spacemint/views/ItemRows.h"

namespace spacemint {

/// A list with what is said in its place while it is empty, or above it. Main thread only.
class Section : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(spacemint::ItemRows* rows READ rows CONSTANT)
  Q_PROPERTY(QString text READ text NOTIFY changed)
  Q_PROPERTY(bool isWaiting READ isWaiting NOTIFY changed)
  Q_PROPERTY(bool isShown READ isShown NOTIFY changed)
 public:
  struct State {
    std::vector<ItemRow> rows = {};
    std::string text = {};
    /// What the text speaks of goes on.
    bool isWaiting = false;
    /// Whether there is anything to say at all.
    bool isShown = true;
  };

  explicit Section(const ItemActions& actions, QObject* parent = nullptr) : QObject(parent), rows_(actions) {}

  ItemRows* rows() { return &rows_; }
  const QString& text() const { return text_; }
  bool isWaiting() const { return isWaiting_; }
  bool isShown() const { return isShown_; }

  void assign(State state);

 Q_SIGNALS:
  void changed();

 private:
  ItemRows rows_;
  QString text_;
  bool isWaiting_ = false;
  bool isShown_ = true;
};

}  // namespace spacemint
