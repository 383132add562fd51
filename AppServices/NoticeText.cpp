#include "AppServices/NoticeText.h"

#include "core/base/Translation.h"

namespace spacemint {

NoticeText noticeText(const Notice& notice, const std::string& appName) {
  if (const auto* message = std::get_if<AppMessage>(&notice)) {
    return {
        .title = message->title, .body = message->body, .primary = message->link ? message->link->title : ""};
  }
  return {
      .title = i18n("Share anonymous usage?"),
      .body = i18n("Once a day, {application} would tell us it's in use, with its version and the version of "
                   "your system. Nothing about you or your files. You can change this in the {application} "
                   "menu.",
                   {{"application", appName}}),
      .primary = i18nc("anonymous usage", "Share"),
      .secondary = i18nc("anonymous usage", "Don't share")};
}

}  // namespace spacemint
