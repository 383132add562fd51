#pragma once

#include "Spacemint/views/UiHost.h"

#include <QQmlEngine>

namespace spacemint {

/// The scan that runs, the last one, and their buttons. Main thread only.
class ScanControl : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(bool scanning READ isScanning NOTIFY changed)
  /// From 0 to 1; -1 where nobody knows.
  Q_PROPERTY(double fraction READ fraction NOTIFY changed)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString detail READ detail NOTIFY changed)
  /// When the last scan was, of what; empty without one.
  Q_PROPERTY(QString scanned READ scanned NOTIFY changed)
  Q_PROPERTY(QString scannedHelp READ scannedHelp NOTIFY changed)
 public:
  explicit ScanControl(const UiHost& host);

  bool isScanning() const { return scans().isScanning(); }
  double fraction() const { return scans().fraction().value_or(-1); }
  QString title() const;
  QString detail() const;
  QString scanned() const;
  QString scannedHelp() const;

  Q_INVOKABLE void scan() const { host_.model.scan(); }
  Q_INVOKABLE void stop() const { host_.model.cancelScan(); }
  /// Time has passed, and the texts that tell of it are old.
  Q_INVOKABLE void refresh() { Q_EMIT changed(); }

 Q_SIGNALS:
  void changed();

 private:
  const ScanLifecycle& scans() const { return host_.model.scans(); }

  const UiHost& host_;
};

}  // namespace spacemint
