#pragma once

#include "Spacemint/model/ScanHistory.h"

#include <QObject>

namespace spacemint {

/// Measures single paths again and puts what is there now into the current scan. Main thread only.
class Remeasure : public QObject {
  Q_OBJECT
 public:
  struct Request {
    std::string path;
    /// What cannot be measured is taken to be empty.
    bool assumeEmptied = false;
    /// Also a path that the scan does not know, with those above it that it does not know.
    bool addIfMissing = false;
  };

  Remeasure(ScanHistory& history, Tasks& tasks, Bytes minNodeSize)
      : history_(history),
        tasks_(tasks),
        minNodeSize_(minNodeSize) {}

  /// Finishes, always with true, when the scan says how it is.
  QFuture<bool> run(Request request);

  /// One after the other.
  QFuture<bool> runAll(std::vector<Request> requests);

 private:
  ScanHistory& history_;
  Tasks& tasks_;
  Bytes minNodeSize_;
};

}  // namespace spacemint
