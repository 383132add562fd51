// The texts of other programs, and the files of git, which anybody may have put into a folder.

#include "core/analysis/DockerUsage.h"
#include "core/analysis/GitWorktrees.h"
#include "core/analysis/HuggingFace.h"
#include "core/analysis/OllamaModels.h"
#include "core/analysis/SizeText.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace spacemint;
  const std::string_view text{reinterpret_cast<const char*>(data), size};
  DevTools::parseDockerDF(text);
  DevTools::isConnectionError(text);
  DevTools::parseOllamaList(text);
  DevTools::parseSize(text);
  DevTools::parseHuggingFaceFolder(text);
  GitWorktrees::parseGitdir(text, "/work/feature");
  GitWorktrees::parseBranch(text);
  return 0;
}
