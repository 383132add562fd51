#pragma once

#include "Spacemint/views/UiHost.h"

#include <QQmlEngine>

namespace spacemint {

/// The sentences about a scan.
namespace ScanText {

/// "Scanning · 42%", or "Scanning…" without a fraction.
std::string title(std::optional<double> fraction);

/// "12,345 files · about 2 min left": the files that were counted, and the remaining time if it is known.
std::string detail(std::int64_t files, std::optional<Seconds> remaining, const std::string& locale);

struct Scanned {
  const Snapshot& snapshot;
  Date now;
  std::string_view home;
  /// When the scan was last brought up to date.
  std::optional<Date> updatedAt = {};
};

/// "Scanned 2 hours ago · home folder", or "Updated just now · home folder"
std::string scanned(const Scanned& scan);

/// "600,000 files, scanned in 4s"
std::string scannedHelp(const Snapshot& snapshot, const std::string& locale);

}  // namespace ScanText

/// The running scan, the last scan, and the buttons that start and stop a scan. Main thread only.
class ScanControl : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(bool scanning READ isScanning NOTIFY changed)
  /// From 0 to 1; -1 while it is unknown.
  Q_PROPERTY(double fraction READ fraction NOTIFY changed)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString detail READ detail NOTIFY changed)
  /// The age and the folder of the last scan; empty before the first one.
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

  Q_INVOKABLE void scan() const { host_.model.scans().scan(); }
  Q_INVOKABLE void stop() const { host_.model.scans().cancel(); }
  /// Makes the texts again, because they contain the age of the scan and the remaining time.
  Q_INVOKABLE void refresh() { Q_EMIT changed(); }

 Q_SIGNALS:
  void changed();

 private:
  const ScanLifecycle& scans() const { return host_.model.scans(); }

  const UiHost& host_;
};

}  // namespace spacemint
