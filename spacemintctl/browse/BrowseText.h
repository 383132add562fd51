#pragma once

#include "core/cleanup/CleanupPlan.h"
#include "spacemintctl/browse/BrowseView.h"
#include "spacemintctl/browse/RemovalOffer.h"

#include <map>
#include <string>
#include <vector>

namespace spacemint::ctl {

/// The texts of `spacemintctl browse`. Pure; any thread.
namespace BrowseText {

/// All keys, for the help.
std::vector<Paragraph> help();

/// "12.3 GB in 4,512 files"
std::string figure(const std::string& size, std::int64_t files, const std::string& locale);

/// What is known of an item. `before` is the name of the scan that is compared with; empty if there is none.
/// `about` says what the folder is for, and is empty if that is not known.
std::vector<Paragraph> info(const Row& row, const BrowseView& view, const std::string& before,
                            const std::string& about);

/// What goes, and what stays. `rows` is the number of items to name.
std::vector<Paragraph> removal(const RemovalOffer& offer, const BrowseView& view);

/// The plan of a clean-up that is no removal of chosen items.
std::vector<Paragraph> cleanup(const CleanupPlan& plan, const BrowseView& view);

/// What a well-known folder is, and what its removal means.
std::string about(std::string_view title, std::string_view advice);

/// The start of the sentence about a removal of several items: "Deleted 3 items".
std::string doneLabel(const CleanupPlan& plan, const std::string& locale);

/// "3 marked, 1.2 GB", of the sizes by path. What lies in another marked item counts with that one only.
std::string marks(const std::map<std::string, Bytes>& marked, const std::string& locale);

/// A stored scan: "2026-11-25 08:19:10 (1 day ago)".
std::string scanName(Date date, Date now, const std::string& locale);

/// The keys below a list, as many as there is room for.
std::string keys(bool isFolder, bool isReadOnly);

}  // namespace BrowseText

}  // namespace spacemint::ctl
