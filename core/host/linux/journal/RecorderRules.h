#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace spacemint {

/// What makes a recorder right. A test switches one of these off to see that comparing with a full scan finds
/// it out; nobody else does.
struct RecorderRules {
  /// Watch a folder before its entries are read.
  bool watchesBeforeListing = true;
  /// Watch what lies below a folder that appears, and count all of it as changed.
  bool watchesNewTrees = true;
  bool newFolderIsTree = true;
  /// A folder that moved counts as changed with all below it.
  bool movedFolderIsTree = true;
  /// Make sure that the folder at a path is the one that is meant.
  bool verifiesFolders = true;
  /// Look at a place also when a folder is known to be there, for another one may have taken its name.
  bool looksAtKnownPlaces = true;
  /// Answer only after everything that was queued has been handled.
  bool drainsBeforeAnswering = true;
  bool checksRoot = true;
  bool noticesLoss = true;
  /// Folders of which nothing is known are in every answer.
  bool unwatchedIsTree = true;
  bool noticesMounts = true;
  /// One mark on the file system takes the place of a watch on each folder, where the system grants it.
  bool marksFileSystem = true;
  /// Kinds of events (IN_… bits) that are not asked for.
  std::uint32_t deafTo = 0;

  /// Called between watching a folder and listing it, with a path to it.
  std::function<void(const std::string& folder)> betweenWatchAndList;
  /// Called on the recorder's thread each time before it looks for events.
  std::function<void()> beforeListening;
};

}  // namespace spacemint
