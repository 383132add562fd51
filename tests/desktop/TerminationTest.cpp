#include "Spacemint/desktop/linux/Termination.h"

#include "support/ChildProcess.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <csignal>

namespace spacemint {
namespace {

using support::startChild;
using support::statusOf;
using support::waitUntil;

TEST(Termination, isAskedForOnTheMainThread) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    int requests = 0;
    const Termination termination([&] { ++requests; });
    raise(signal);
    EXPECT_EQ(requests, 0);
    EXPECT_TRUE(waitUntil([&] { return requests == 1; }));
  }
}

TEST(Termination, comesAtOnceTheSecondTime) {
  const Termination termination([] {});
  const int status = statusOf(startChild([] {
    raise(SIGTERM);
    raise(SIGINT);
    return true;
  }));
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGINT);
}

TEST(Termination, leavesIgnoredSignalsIgnored) {
  std::signal(SIGHUP, SIG_IGN);
  {
    const Termination termination([] {});
    raise(SIGHUP);
  }
  EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

}  // namespace
}  // namespace spacemint
