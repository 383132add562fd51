#pragma once

#include "Spacemint/views/Section.h"

namespace spacemint {

/// What developers' tools keep. Main thread only.
class Developer : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(spacemint::Section* caches READ caches CONSTANT)
  Q_PROPERTY(spacemint::Section* ollama READ ollama CONSTANT)
  Q_PROPERTY(spacemint::Section* huggingFace READ huggingFace CONSTANT)
  Q_PROPERTY(spacemint::Section* docker READ docker CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* dockerPrune READ dockerPrune CONSTANT)
  Q_PROPERTY(spacemint::Section* worktrees READ worktrees CONSTANT)
  Q_PROPERTY(spacemint::ItemRows* activeWorktrees READ activeWorktrees CONSTANT)
 public:
  explicit Developer(const ItemActions& actions);

  Section* caches() { return &caches_; }
  Section* ollama() { return &ollama_; }
  Section* huggingFace() { return &huggingFace_; }
  Section* docker() { return &docker_; }
  /// The row with the button that cleans up Docker, while there is something to clean up.
  ItemRows* dockerPrune() { return &dockerPrune_; }
  Section* worktrees() { return &worktrees_; }
  ItemRows* activeWorktrees() { return &activeWorktrees_; }

  /// The tab is seen: asks the tools what they keep.
  Q_INVOKABLE void appeared();
  Q_INVOKABLE QString activeToggle(int count, bool showsAll) const;

 private:
  void updateFound();
  void updateDocker();
  void updateOllama();
  std::vector<ItemRow> cacheRows() const;
  std::vector<ItemRow> huggingFaceRows() const;
  void updateWorktrees();
  ItemRow worktreeRow(const GitWorktree& worktree) const;
  Date now() const { return host_.desktop.clock.now(); }

  const UiHost& host_;
  Section caches_;
  Section ollama_;
  Section huggingFace_;
  Section docker_;
  ItemRows dockerPrune_;
  Section worktrees_;
  ItemRows activeWorktrees_;
};

}  // namespace spacemint
