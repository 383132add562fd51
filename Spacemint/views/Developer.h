#pragma once

#include "Spacemint/views/ItemRows.h"

namespace spacemint {

/// The disk space that developers' tools use. Main thread only.
class Developer : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(spacemint::ItemRows* caches READ caches CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* ollama READ ollama CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* huggingFace READ huggingFace CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* docker READ docker CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* dockerPrune READ dockerPrune CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* worktrees READ worktrees CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* activeWorktrees READ activeWorktrees CONSTANT)

 public:
  explicit Developer(const UiHost& host);

  ItemRows* caches() { return &caches_; }
  ItemRows* ollama() { return &ollama_; }
  ItemRows* huggingFace() { return &huggingFace_; }
  ItemRows* docker() { return &docker_; }
  /// One row with the button that cleans up Docker; empty when Docker has nothing to clean up.
  ItemRows* dockerPrune() { return &dockerPrune_; }
  /// The worktrees that are stale or whose repository is gone.
  ItemRows* worktrees() { return &worktrees_; }
  ItemRows* activeWorktrees() { return &activeWorktrees_; }

  /// The tab became visible: asks the tools, unless they were asked a short time ago.
  Q_INVOKABLE void appeared();
  /// The title of the button that shows or hides the active worktrees; empty when there are none.
  Q_INVOKABLE QString activeToggle(int count, bool showsAll) const;

 private:
  void updateFound();
  void updateDocker();
  void updateOllama();
  std::vector<ListItem> cacheItems() const;
  std::vector<ListItem> huggingFaceItems() const;
  void updateWorktrees();
  ListItem worktreeItem(const GitWorktree& worktree) const;
  Date now() const { return host_.desktop.clock.now(); }

  const UiHost& host_;
  ItemRows caches_;
  ItemRows ollama_;
  ItemRows huggingFace_;
  ItemRows docker_;
  ItemRows dockerPrune_;
  ItemRows worktrees_;
  ItemRows activeWorktrees_;
};

}  // namespace spacemint
