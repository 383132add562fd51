#include "Spacemint/desktop/linux/HostVolume.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

TEST(HostVolume, isTheOneWithTheHomeFolder) {
  HostVolume volume;
  const auto status = volume.status();
  ASSERT_TRUE(status);
  EXPECT_GT(status->total, 0);
  EXPECT_EQ(status->name, VolumeStatus::current(startupVolume())->name);
  EXPECT_EQ(volume.mayHang(), mayHang(startupVolume()));
}

}  // namespace
}  // namespace spacemint
