#include "Spacemint/model/GrowthNow.h"

#include "core/base/Log.h"

#include <algorithm>
#include <utility>

namespace spacemint {

GrowthNow::GrowthNow(const AppContext& context, const Desktop& desktop, std::function<std::string()> root)
    : context_(context),
      desktop_(desktop),
      root_(std::move(root)) {}

void GrowthNow::setSeen(bool isSeen) {
  if (isSeen == this->isSeen()) return;
  watching_.reset();
  if (!isSeen) return;
  watching_ = std::make_unique<QObject>();
  desktop_.clock.every(timing, watching_.get(), [this] { refresh(); });
  refresh();
}

void GrowthNow::refresh(std::function<void()> then) {
  if (then) waiting_.push_back(std::move(then));
  if (std::exchange(isRunning_, true)) return;
  std::string root = root_();
  if (!reader_ || root != readerRoot_) {
    const auto freeBytes = [&volume = desktop_.volume]() -> std::optional<Bytes> {
      const auto reading = volume.status();
      return reading ? std::optional{reading->free} : std::nullopt;
    };
    reader_ = std::make_shared<GrowthReader>(
        GrowthReader::Parts{.journal = context_.journal, .root = root, .freeBytes = freeBytes});
    readerRoot_ = std::move(root);
  }
  const auto look = [reader = reader_, now = desktop_.clock.steadyNow(), date = desktop_.clock.now()] {
    const auto looked = reader->refresh(now, date);
    if (!looked) {
      log(LogLevel::debug, "what grows now is not known, because " + std::string{textOf(looked.error())});
    }
    Result result = resultOf(reader->watch());
    result.isKnown = looked.has_value();
    return result;
  };
  desktop_.tasks.run(Tasks::Priority::utility, this, look,
                     [this](Result result) { take(std::move(result)); });
}

GrowthNow::Result GrowthNow::resultOf(const GrowthWatch& watch) {
  Result result{.lines = watch.lines(), .untilFull = watch.untilFull(), .culprit = {}};
  std::erase_if(result.lines, &GrowthLine::isFreed);
  const Bytes lost = watch.lost().tenMinutes;
  if (!result.lines.empty() && result.lines.front().figures.tenMinutes >= lost / 3)
    result.culprit = result.lines.front();
  std::erase_if(result.lines,
                [](const GrowthLine& line) { return !line.isGoingOn && line.quiet > stoppedTime; });
  return result;
}

void GrowthNow::take(Result result) {
  isRunning_ = false;
  isKnown_ = result.isKnown;
  const bool isOther = lines_ != result.lines || untilFull_ != result.untilFull;
  lines_ = std::move(result.lines);
  untilFull_ = result.untilFull;
  culprit_ = std::move(result.culprit);
  if (isOther) Q_EMIT changed();
  for (const auto& then : std::exchange(waiting_, {})) then();
}

}  // namespace spacemint
