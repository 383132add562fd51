#include "AppServices/NoticeText.h"

namespace spacemint {

NoticeText noticeText(const Notice& notice, const std::string& appName) {
  if (const auto* message = std::get_if<AppMessage>(&notice)) {
    return {
        .title = message->title, .body = message->body, .primary = message->link ? message->link->title : ""};
  }
  return {.title = "Share anonymous usage?",
          .body = "Once a day, " + appName + " would tell us it's in use, with its version and " +
                  "the version of your system. Nothing about you or your files. You can change this in the " +
                  appName + " menu.",
          .primary = "Share",
          .secondary = "Don't share"};
}

}  // namespace spacemint
