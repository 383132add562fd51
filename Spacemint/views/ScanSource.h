#pragma once

#include "Spacemint/views/UiHost.h"

#include <QQmlEngine>
#include <QUrl>

namespace spacemint {

/// Whose scan is shown: that of this computer, or one from a file. Main thread only.
class ScanSource : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(bool isOfHere READ isOfHere NOTIFY changed)
  // About a scan from a file; empty for that of this computer.
  /// "Scan of db1, 3 weeks ago"
  Q_PROPERTY(QString title READ title NOTIFY changed)
  /// "/srv: 412 GB in 1,203,443 files"
  Q_PROPERTY(QString contents READ contents NOTIFY changed)
 public:
  explicit ScanSource(const UiHost& host);

  bool isOfHere() const { return host_.model.shown().isOfHere(); }
  QString title() const;
  QString contents() const;

  /// Shows the folder, or the scan in the file, that the user dropped. Ignores what is not a file.
  Q_INVOKABLE void open(const QUrl& url) const;
  /// Shows the scan of this computer again.
  Q_INVOKABLE void close() const { host_.model.shown().close(); }

 Q_SIGNALS:
  void changed();

 private:
  const UiHost& host_;
};

}  // namespace spacemint
