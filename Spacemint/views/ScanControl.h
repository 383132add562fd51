#pragma once

#include "Spacemint/views/ItemRows.h"
#include "Spacemint/views/UiHost.h"

#include <QQmlEngine>

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <vector>

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

/// Sorts what was found so that names in `order` keep that order, and new ones come last. Those that are gone
/// leave it.
std::vector<FoundSoFar::Item> inOrder(std::vector<FoundSoFar::Item> items,
                                      const std::vector<std::string>& order);

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
  /// The same, with the folder on a line of its own.
  Q_PROPERTY(QString scannedLines READ scannedLines NOTIFY changed)
  Q_PROPERTY(QString scannedHelp READ scannedHelp NOTIFY changed)
  /// The largest items that the running scan has found.
  Q_PROPERTY(spacemint::ItemRows* found READ found CONSTANT)
  /// The size of everything that it has found.
  Q_PROPERTY(QString foundSize READ foundSize NOTIFY foundChanged)
  /// While true, the rows of `found` keep their places.
  Q_PROPERTY(bool holdsOrder MEMBER holdsOrder_)

 public:
  explicit ScanControl(const UiHost& host);

  bool isScanning() const { return scans().isScanning(); }
  double fraction() const { return scans().fraction().value_or(-1); }
  QString title() const;
  QString detail() const;
  QString scanned() const;
  QString scannedLines() const;
  QString scannedHelp() const;
  ItemRows* found() { return &found_; }
  QString foundSize() const;

  Q_INVOKABLE void scan() const { host_.model.scans().scan(); }
  Q_INVOKABLE void stop() const { host_.model.scans().stop(); }
  /// Whether a person sees this view of the scan.
  Q_INVOKABLE void setSeen(QObject* view, bool isSeen);
  /// Makes the texts again, because they contain the age of the scan and the remaining time.
  Q_INVOKABLE void refresh() { Q_EMIT changed(); }

 Q_SIGNALS:
  void changed();
  void foundChanged();

 private:
  const ScanLifecycle& scans() const { return host_.model.scans(); }
  void updateFound();

  const UiHost& host_;
  ItemRows found_{host_};
  bool holdsOrder_ = false;
  /// The names in the order in which they are shown, and when they were sorted.
  std::vector<std::string> order_;
  std::optional<std::chrono::steady_clock::time_point> sortedAt_;
  std::set<const QObject*> views_;
};

}  // namespace spacemint
