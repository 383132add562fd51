// What the tools print, as it was printed, and what they might print.

#include "core/analysis/DockerUsage.h"
#include "core/analysis/HuggingFace.h"
#include "core/analysis/OllamaModels.h"
#include "core/analysis/SizeText.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace spacemint::DevTools {
namespace {

using support::file;
using support::folder;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(SizeText, isReadWithDecimalAndBinaryUnits) {
  const std::pair<const char*, std::optional<Bytes>> cases[]{
      {"1.5GiB", 1'610'612'736},
      {"512", 512},
      {"12 kB", 12'000},
      {" 4.7 GB ", 4'700'000'000},
      {"800MB (66%)", 800'000'000},
      {"0B", 0},
      {"2tb", 2'000'000'000'000},
      {"1KiB", 1'024},
      {"3MiBx", std::nullopt},
      {".5 KB", 500},
      {"1e3B", 1'000},
      {"+7B", 7},
      {"-5 B", -5},
      {"0.5", 1},
      {"3 PB", std::nullopt},
      {"1 TiB", std::nullopt},
      {"GB", std::nullopt},
      {"", std::nullopt},
      {"-", std::nullopt},
      {"inf", std::nullopt},
      {"nan B", std::nullopt},
      {"9223372036854775807", std::nullopt},  // rounds to 2^63
      {"9300000 TB", std::nullopt},
      {"1e400", std::nullopt},
  };
  for (const auto& [text, bytes] : cases) EXPECT_EQ(parseSize(text), bytes) << text;
}

TEST(DockerUsage, isReadLineByLine) {
  const char* output =
      R"~({"Active":"3","Reclaimable":"1.1GB (26%)","Size":"4.2GB","TotalCount":"12","Type":"Images"}

not JSON
[1]
{"Active":0,"Reclaimable":"0B","Size":"0B","TotalCount":"0","Type":"Containers"}
{"Active":"+1","Reclaimable":"-","Size":"3 PB","TotalCount":"N/A","Type":"Local Volumes","More":1}
{"Active":"0","Reclaimable":"-9000000 TB","Size":"-1B","TotalCount":"0","Type":"Build Cache"})~";
  const auto usage = parseDockerDF(output);
  EXPECT_THAT(usage,
              ElementsAre(DockerUsage{"Images", 12, 3, 4'200'000'000, 1'100'000'000},
                          DockerUsage{"Local Volumes", 0, 1, 0, 0}, DockerUsage{"Build Cache", 0, 0, 0, 0}));
  EXPECT_FALSE(usage[0].isVolumes());
  EXPECT_TRUE(usage[1].isVolumes());
  EXPECT_THAT(parseDockerDF(""), IsEmpty());
}

TEST(DockerUsage, tellsASilentServiceFromAnError) {
  for (const char* text :
       {"Cannot connect to the Docker daemon at unix:///var/run/docker.sock. Is the docker "
        "daemon running?",
        "dial tcp 127.0.0.1:2375: connect: Connection Refused", "DAEMON IS NOT RUNNING",
        "failed to connect to the docker API at unix:///var/run/docker.sock",
        "error: No such file or directory (os error 2)"}) {
    EXPECT_TRUE(isConnectionError(text)) << text;
  }
  for (const char* text : {"", "permission denied while trying to reach the Docker daemon socket"}) {
    EXPECT_FALSE(isConnectionError(text)) << text;
  }
}

TEST(OllamaModels, areReadFromTheirColumns) {
  EXPECT_THAT(parseOllamaList("NAME                ID              SIZE      MODIFIED       \n"
                              "llama3.2:latest     a80c4f17acd5    2.0 GB    3 weeks ago    \n"
                              "\n"
                              "qwen2.5:0.5b        a8b0c5157701    397 MB    About an hour ago\n"
                              "cloud:latest        569662207105    -         2 days ago\n"
                              "odd:latest          a8b0c5157702    -4 GB     2 days ago\n"
                              "short line\n"
                              "mistral:7b          f974a74358d6    4.1 GB    5 months ago"),
              ElementsAre(OllamaModel{"mistral:7b", 4'100'000'000, "5 months ago"},
                          OllamaModel{"llama3.2:latest", 2'000'000'000, "3 weeks ago"},
                          OllamaModel{"qwen2.5:0.5b", 397'000'000, "About an hour ago"}));
  EXPECT_THAT(parseOllamaList("NAME  ID  SIZE  MODIFIED\n"), IsEmpty());
  EXPECT_THAT(parseOllamaList(""), IsEmpty());
}

TEST(HuggingFace, readsTheNamesOfTheHubsFolders) {
  const std::pair<const char*, std::optional<HuggingFaceRepository>> cases[]{
      {"models--meta-llama--Llama-3-8B", {{"meta-llama/Llama-3-8B", "Model"}}},
      {"models--gpt2", {{"gpt2", "Model"}}},
      {"datasets--a--b--c", {{"a/b/c", "Dataset"}}},
      {"spaces--a--b", {{"a/b", "Space"}}},
      {"models--", {{"", "Model"}}},
      {"models", std::nullopt},
      {"weights--a", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [name, repository] : cases) EXPECT_EQ(parseHuggingFaceFolder(name), repository) << name;
  const HuggingFaceItem deep{.repo = "a/b/c", .kind = "Dataset", .path = "/x"};
  EXPECT_EQ(deep.name(), "c");
  EXPECT_EQ(deep.owner(), "a/b");
  const HuggingFaceItem plain{.repo = "gpt2", .kind = "Model", .path = "/x"};
  EXPECT_EQ(plain.name(), "gpt2");
  EXPECT_EQ(plain.owner(), std::nullopt);
}

TEST(HuggingFace, listsRepositoriesAndOtherFoldersOfTheCache) {
  const Node cache =
      folder("huggingface",
             {folder("hub", {folder("models--gpt2", {file("b", 50)}), folder(".locks", {file("b", 90)}),
                             folder("odd", {file("b", 20)}), file("version.txt", 10)}),
              folder("xet", {file("b", 30)}), file("token", 1)});
  const Snapshot scan{.root = folder("/home/ann", {folder(".cache", {cache})})};
  const std::string at = "/home/ann/.cache/huggingface/";
  EXPECT_THAT(huggingFace({.in = scan, .home = "/home/ann"}),
              ElementsAre(HuggingFaceItem{"gpt2", "Model", at + "hub/models--gpt2", 50},
                          HuggingFaceItem{"xet", "Cache folder", at + "xet", 30},
                          HuggingFaceItem{"hub/odd", "Cache folder", at + "hub/odd", 20}));
  EXPECT_THAT(huggingFace({.in = scan, .home = "/home/bob"}), IsEmpty());
  // The hub can lie apart from the rest.
  const Snapshot moved{.root =
                           folder("/home/ann", {folder("hub", {folder("models--gpt2", {file("b", 50)})})})};
  const auto environment = [](const std::string& name) {
    return name == "HF_HUB_CACHE" ? std::optional<std::string>{"/home/ann/hub"} : std::nullopt;
  };
  EXPECT_THAT(huggingFace({.in = moved, .home = "/home/ann", .environment = environment}),
              ElementsAre(HuggingFaceItem{"gpt2", "Model", "/home/ann/hub/models--gpt2", 50}));
}

}  // namespace
}  // namespace spacemint::DevTools
