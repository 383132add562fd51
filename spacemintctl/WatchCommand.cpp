#include "spacemintctl/WatchCommand.h"

#include "core/base/ByteFormat.h"
#include "core/host/EventRecorder.h"
#include "core/host/UserFolders.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/ScanRoot.h"

#include <signal.h>

#include <cerrno>
#include <thread>

namespace spacemint::ctl {

namespace {

constexpr std::chrono::hours patience{24};

// Blocks these signals in this thread and in all threads started later, for `sigwait`.
sigset_t holdBackEndings() {
  sigset_t endings{};
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&endings, signal);
  pthread_sigmask(SIG_BLOCK, &endings, nullptr);
  return endings;
}

std::string counted(std::size_t folders) {
  return groupedNumber(static_cast<std::int64_t>(folders), userLocale()) +
         (folders == 1 ? " folder" : " folders");
}

void sayWhatIsWatched(EventRecorder& recorder, const std::string& root) {
  if (!recorder.waitUntilRecording(patience)) {
    const auto error = recorder.status().error;
    if (error && error != JournalError::notRecording) {
      complain(printable(root) + ": cannot be recorded: " + std::string{textOf(*error)});
    }
    return;
  }
  const auto status = recorder.status();
  print("Recording what changes in " + printable(root) + ": " + counted(status.watches) + " watched\n");
  if (status.limitAdvice.empty()) return;
  complain(counted(status.folders - status.watches) +
           " and their subfolders could not be watched, so every scan visits them; as an "
           "administrator, \"" +
           status.limitAdvice + "\" raises the limit");
}

}  // namespace

int runWatch(const std::string& path) {
  const auto root = scanRoot(path);
  if (!root) {
    complain(printable(root.error().message));
    return failed;
  }
  const sigset_t endings = holdBackEndings();
  auto recorder = EventRecorder::start({.root = *root});
  if (!recorder) {
    complain(recorder.error().isSystem(EBUSY) ? printable(*root) + ": is being recorded already"
                                              : printable(recorder.error().message));
    return failed;
  }
  std::thread saying([&] { sayWhatIsWatched(**recorder, *root); });
  int ending = 0;
  sigwait(&endings, &ending);
  recorder->get()->stop();
  saying.join();
  return done;
}

}  // namespace spacemint::ctl
