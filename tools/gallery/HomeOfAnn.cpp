#include "HomeOfAnn.h"

#include "support/ModelFixture.h"

#include <chrono>
#include <utility>
#include <vector>

namespace spacemint::gallery {

using support::morning;

Node agedFile(std::string name, double megabytes, int days) {
  return {.name = std::move(name),
          .size = static_cast<Bytes>(megabytes * 1e6),
          .modified = morning - std::chrono::days{days}};
}

Node homeOfAnn(const std::string& name, bool isLater) {
  using support::folder;
  std::vector<Node> concerts{agedFile("summer.mkv", 1000, 100)};
  if (isLater) concerts.push_back(agedFile("2026-03-01 evening.mkv", 4100, 1));
  std::vector<Node> downloads{agedFile("debian-12-amd64-DVD-1.iso", 4000, 300),
                              folder("old", {agedFile("a.zip", 600, 900), agedFile("b.zip", 400, 1400)})};
  if (isLater) downloads.push_back(agedFile("ubuntu-25.10-desktop-amd64.iso", 1900, 1));
  const double grown = isLater ? 1 : 0;
  return folder(
      name,
      {folder("Videos",
              {folder("Archive", {agedFile("old wedding.mov", 11000, 2000), agedFile("cut.mov", 600, 1900)}),
               agedFile("holiday in the mountains.mp4", 6900 + 2100 * grown, 2),
               folder("Concerts", std::move(concerts)), agedFile("birthday.mkv", 2700, 500)}),
       folder("vm", {folder("windows", {agedFile("disk.img", 11800 + 3600 * grown, 1),
                                        agedFile("snapshot.img", 2600, 60)}),
                     agedFile("docker.raw", 6000 + 1000 * grown, 0)}),
       folder("Downloads", std::move(downloads)),
       folder(".local", {folder("share", {folder("Steam", {agedFile("game", 3900, 200)}),
                                          folder("flatpak", {agedFile("repo", 1500, 90)})}),
                         folder("state", {agedFile("log", 200, 3)})}),
       folder(".cache",
              {folder("huggingface", {agedFile("Llama-3-8B", 3700, 40), agedFile("tokens", 300, 40)}),
               folder("pip", {agedFile("http", 400 + 500 * grown, 1)}),
               folder("npm", {agedFile("_cacache", 300 + 200 * grown, 1)})}),
       folder("Documents",
              {folder("Projects", {agedFile("atlas.psd", 1200, 700), agedFile("plan.pdf", 800, 20)}),
               folder("scans", {agedFile("2019.pdf", 600, 1500)}),
               folder("taxes", {agedFile("2020.pdf", 400, 1100)})}),
       folder("code", {folder("shop", {folder("node_modules", {agedFile("all", 1000 - 300 * grown, 30)}),
                                       agedFile("pack", 500, 5)}),
                       folder("app", {agedFile("build", 500, 9), agedFile("dist", 200, 9)})})},
      {.unlisted = 300'000'000, .unlistedFiles = 4000});
}

}  // namespace spacemint::gallery
