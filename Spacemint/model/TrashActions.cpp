#include "Spacemint/model/TrashActions.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/tree/Paths.h"

namespace spacemint {

namespace {

const std::string refreshId = "trash-refresh";

}  // namespace

void TrashActions::moveToTrash(const FileItem& file) {
  const auto reason = parts_.guard.check({.path = file.path, .outsideHomeAllowed = true});
  if (reason) {
    parts_.messages.show("Spacemint won't move " + isolatedPath(Paths::display(file.path, words_.home)) +
                         ": it " + *reason + ".");
    return;
  }
  desktop_.tasks
      .run(Tasks::Priority::userInitiated,
           [&trash = desktop_.trash, path = Paths::logical(file.path)] { return trash.move(path); })
      .then(whileAlive(
          this, [this, file](const std::expected<std::string, Error>& result) { moved(file, result); }));
}

void TrashActions::moved(const FileItem& file, const std::expected<std::string, Error>& result) {
  const std::string name = "“" + isolatedName(Paths::lastComponent(file.path)) + "”";
  if (!result) {
    parts_.messages.show("Couldn't move " + name + " to the Trash: " + result.error().message);
    return;
  }
  parts_.messages.show("Moved " + name + " to the Trash. Empty it to free " +
                       ByteFormat::string(file.size, words_.locale) + ".");
  parts_.history.edit(file.path, [&](Snapshot& snapshot) { return snapshot.remove(file.path); });
  parts_.volume.refresh();
}

void TrashActions::refresh() {
  const SharedSnapshot& snapshot = parts_.history.snapshot();
  if (!snapshot || !parts_.runs.setRunning(refreshId, true)) return;
  parts_.remeasure
      .run({.path = trashPlace(snapshot.get(), words_.home, words_.data).folder, .addIfMissing = true})
      .then(whileAlive(this, [this](bool) { parts_.runs.setRunning(refreshId, false); }));
}

}  // namespace spacemint
