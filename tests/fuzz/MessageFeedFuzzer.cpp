// The message feed comes from a server that may not be the maker's any more.

#include "AppServices/MessageFeed.h"
#include "AppServices/NoticeText.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace spacemint;
  const auto feed = MessageFeed::parse({reinterpret_cast<const char*>(data), size});
  if (!feed) return 0;
  const AppMessage* message =
      feed->next({.slug = "spacemint", .version = "1.10", .today = "2026-03-01", .seen = {"seen"}});
  if (message) noticeText(*message, "Spacemint");
  return 0;
}
