#include "spacemintctl/WatchCommand.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
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

std::string number(std::size_t count) {
  return groupedNumber(static_cast<std::int64_t>(count), userLocale());
}

void sayWhatIsWatched(EventRecorder& recorder, const std::string& root) {
  if (!recorder.waitUntilRecording(patience)) {
    const auto error = recorder.status().error;
    if (error && error != JournalError::notRecording) {
      complain(i18n("{path}: cannot be recorded: {reason}",
                    {{"path", printable(root)}, {"reason", i18n(std::string{textOf(*error)}.c_str())}}));
    }
    return;
  }
  const auto status = recorder.status();
  print(i18np("Recording what changes in {path}: {count} folder watched",
              "Recording what changes in {path}: {count} folders watched",
              static_cast<std::int64_t>(status.watches),
              {{"path", printable(root)}, {"count", number(status.watches)}}) +
        '\n');
  if (status.limitAdvice.empty()) return;
  const std::size_t unwatched = status.folders - status.watches;
  complain(i18np(
      "{count} folder and their subfolders could not be watched, so every scan visits them; as an "
      "administrator, \"{command}\" raises the limit",
      "{count} folders and their subfolders could not be watched, so every scan visits them; as an "
      "administrator, \"{command}\" raises the limit",
      static_cast<std::int64_t>(unwatched), {{"count", number(unwatched)}, {"command", status.limitAdvice}}));
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
    complain(recorder.error().isSystem(EBUSY)
                 ? i18n("{path}: is being recorded already", {{"path", printable(*root)}})
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
