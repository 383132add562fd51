#pragma once

#include "Spacemint/desktop/Clock.h"
#include "Spacemint/desktop/Tasks.h"
#include "Spacemint/tools/ToolRuns.h"
#include "core/analysis/DockerUsage.h"
#include "core/analysis/OllamaModels.h"
#include "core/analysis/ToolState.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace spacemint {

/// What Docker and Ollama say they keep. Main thread only.
class DeveloperTools : public QObject {
  Q_OBJECT
 public:
  using Docker = DevTools::ToolState<std::vector<DevTools::DockerUsage>>;
  using Ollama = DevTools::ToolState<std::vector<DevTools::OllamaModel>>;

  /// `refreshIfNeeded` asks again after this time.
  static constexpr std::chrono::seconds keptFor{120};

  DeveloperTools(ToolRuns runs, Tasks& tasks, const Clock& clock)
      : runs_(std::move(runs)),
        tasks_(tasks),
        clock_(clock) {}

  const Docker& docker() const { return docker_; }
  const Ollama& ollama() const { return ollama_; }

  /// What pruning frees, volumes apart; 0 while Docker has not answered.
  Bytes dockerReclaimable() const;
  Bytes dockerVolumesReclaimable() const;

  void refreshIfNeeded();
  void refresh();
  /// These two call `then` after the answer of the tool or its failure, unless this object was destroyed
  /// before.
  void refreshDocker(std::function<void()> then = [] {});
  void refreshOllama(std::function<void()> then = [] {});

 Q_SIGNALS:
  void dockerChanged();
  void ollamaChanged();

 private:
  template <class State, class Parse>
  void ask(const DevTools::ToolQuery& query, State DeveloperTools::*held, void (DeveloperTools::*changed)(),
           Parse parse, std::function<void()> then);

  ToolRuns runs_;
  Tasks& tasks_;
  const Clock& clock_;
  Docker docker_;
  Ollama ollama_;
  std::optional<std::chrono::steady_clock::time_point> lastRefresh_;
};

}  // namespace spacemint
