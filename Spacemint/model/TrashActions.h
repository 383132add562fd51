#pragma once

#include "Spacemint/model/CleanupRuns.h"
#include "core/cleanup/DeletionGuard.h"
#include "core/places/TrashPlace.h"

#include <QObject>

namespace spacemint {

/// Moves files to the Trash, and keeps its size in the current scan right. Main thread only.
class TrashActions : public QObject {
  Q_OBJECT
 public:
  struct Parts {
    ScanHistory& history;
    Remeasure& remeasure;
    CleanupRuns& runs;
    VolumeWatch& volume;
    Messages& messages;
    const DeletionGuard& guard;
  };

  struct Words {
    std::string home;
    std::string data;
    std::string locale;
  };

  TrashActions(const Parts& parts, const Desktop& desktop, Words words)
      : parts_(parts),
        desktop_(desktop),
        words_(std::move(words)) {}

  void moveToTrash(const FileItem& file);

  /// Measures the Trash again, for others fill and empty it too; nothing while that goes on.
  void refresh();

 private:
  void moved(const FileItem& file, const std::expected<std::string, Error>& result);

  Parts parts_;
  Desktop desktop_;
  Words words_;
};

}  // namespace spacemint
