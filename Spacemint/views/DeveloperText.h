#pragma once

#include "core/analysis/DockerUsage.h"
#include "core/analysis/HuggingFace.h"

#include <string>
#include <string_view>

namespace spacemint {

/// What the developer's tab says besides the findings themselves.
namespace DeveloperText {

inline constexpr std::string_view checkingDocker = "Checking Docker…";
inline constexpr std::string_view checkingOllama = "Checking Ollama…";
inline constexpr std::string_view pruneLine =
    "Removes stopped containers, unused images and build cache. Keeps volumes.";
inline constexpr std::string_view downloadsAgain = "It downloads again when needed.";

/// A kind of Docker's data, as what can be freed of it.
struct DockerKind {
  std::string_view type;
  std::string_view title;
  std::string_view symbol;
};

/// What Docker calls by another name than we do; a kind that we do not know keeps Docker's.
DockerKind dockerKind(std::string_view type);

/// The texts of a row of the Hugging Face cache.
struct CacheItem {
  std::string title;
  std::string subtitle;
  std::string_view symbol;
};
CacheItem cacheItem(const DevTools::HuggingFaceItem& item);

/// "Show 1 active worktree", "Hide active worktrees"; empty when there is none.
std::string activeToggle(int count, bool showsAll);

}  // namespace DeveloperText

}  // namespace spacemint
