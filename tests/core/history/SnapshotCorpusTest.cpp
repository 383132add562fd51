// The fuzz target on its corpus, so that each document ever found is tried in every build.

#include "core/history/SnapshotCodec.h"
#include "core/host/AtomicFile.h"

#include <gtest/gtest.h>

#include <filesystem>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace spacemint {
namespace {

TEST(SnapshotCorpus, readsTheGoodAndRefusesTheBad) {
  int documents = 0;
  for (const auto& file : std::filesystem::directory_iterator{SPACEMINT_FUZZ_CORPUS "/snapshot"}) {
    const std::string name = file.path().filename();
    const auto bytes = readFile(file.path(), 1'000'000);
    ASSERT_TRUE(bytes) << name;
    EXPECT_EQ(SnapshotCodec::decode(*bytes).has_value(), !name.starts_with("bad-")) << name;
    LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes->data()), bytes->size());
    ++documents;
  }
  EXPECT_GE(documents, 10);
}

}  // namespace
}  // namespace spacemint
