#pragma once

#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/model/AppContext.h"
#include "core/scan/GrowthReader.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace spacemint {

/// What grows now below the root of the scans. Refreshed after each reading of the volume, and every two
/// seconds while a view shows it. Known only while a recorder runs. Main thread only.
class GrowthNow : public QObject {
  Q_OBJECT
 public:
  static constexpr Clock::Repeating timing{.interval = std::chrono::seconds{2}, .tolerance = {}};
  /// A place that stopped growing is shown for so long.
  static constexpr std::chrono::seconds stoppedTime{30};

  /// `root` returns the root of the next scan.
  GrowthNow(const AppContext& context, const Desktop& desktop, std::function<std::string()> root);

  /// What grows, or did in the last `stoppedTime`, most in the last minute first.
  const std::vector<GrowthLine>& lines() const { return lines_; }
  /// How long the free space lasts at this pace, if it shrank for a minute.
  std::optional<std::chrono::seconds> untilFull() const { return untilFull_; }
  /// What took at least a third of the space that was lost in the last ten minutes.
  const std::optional<GrowthLine>& culprit() const { return culprit_; }

  /// Whether a recorder answered at the last look.
  bool isKnown() const { return isKnown_; }

  /// Whether a view shows the lines now. They are then read every few seconds.
  bool isSeen() const { return watching_ != nullptr; }
  void setSeen(bool isSeen);
  /// Looks now. Then calls `then`, which may be empty, unless this was destroyed before.
  void refresh(std::function<void()> then = {});

 Q_SIGNALS:
  void changed();

 private:
  struct Result {
    bool isKnown = false;
    std::vector<GrowthLine> lines;
    std::optional<std::chrono::seconds> untilFull;
    std::optional<GrowthLine> culprit;
  };

  static Result resultOf(const GrowthWatch& watch);
  void take(Result result);

  const AppContext& context_;
  Desktop desktop_;
  std::function<std::string()> root_;
  // Used by one task at a time.
  std::shared_ptr<GrowthReader> reader_;
  std::string readerRoot_;
  bool isKnown_ = false;
  bool isRunning_ = false;
  std::vector<std::function<void()>> waiting_;
  // Its timer runs while a view shows the lines.
  std::unique_ptr<QObject> watching_;
  std::vector<GrowthLine> lines_;
  std::optional<std::chrono::seconds> untilFull_;
  std::optional<GrowthLine> culprit_;
};

}  // namespace spacemint
