#pragma once

#include "Spacemint/views/Section.h"

namespace spacemint {

/// The largest files of the scan. Main thread only.
class Files : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(spacemint::Section* largest READ largest CONSTANT)
 public:
  explicit Files(const ItemActions& actions);

  Section* largest() { return &largest_; }

 private:
  void update();

  const UiHost& host_;
  Section largest_;
};

}  // namespace spacemint
