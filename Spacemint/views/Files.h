#pragma once

#include "Spacemint/views/ItemRows.h"

namespace spacemint {

/// The largest files of the scan. Main thread only.
class Files : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(spacemint::ItemRows* largest READ largest CONSTANT)

 public:
  explicit Files(const UiHost& host);

  ItemRows* largest() { return &largest_; }

 private:
  void update();
  std::string subtitleOf(const FileItem& file) const;

  const UiHost& host_;
  ItemRows largest_;
};

}  // namespace spacemint
