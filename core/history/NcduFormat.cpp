#include "core/history/NcduFormat.h"

#include "core/base/Translation.h"
#include "core/base/Unicode.h"
#include "core/tree/Paths.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>
#include <map>
#include <set>

namespace spacemint {

namespace {

using OrderedJson = nlohmann::ordered_json;

// Keys of our own, which other programs ignore: how many files a folder's item for small things stands for,
// and whether a folder is a git worktree.
constexpr const char* smallFilesKey = "smallfiles";
constexpr const char* worktreeKey = "worktree";
constexpr const char* minimumKey = "minsize";
// Keys of the format for what has no size, and two values of the latter for folders of other file systems.
constexpr const char* unreadKey = "read_error";
constexpr const char* leftOutKey = "excluded";
constexpr const char* otherDisk = "otherfs";
constexpr const char* kernelDisk = "kernfs";
constexpr const char* smallName = "(smaller files and folders)";

std::int64_t unixSeconds(Date date) {
  return std::chrono::floor<std::chrono::seconds>(date.time_since_epoch()).count();
}

std::string dumped(const OrderedJson& json) {
  return json.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
}

OrderedJson infoOf(const Node& node) {
  OrderedJson info{{"name", withInvalidUtf8Replaced(node.name)}};
  if (!node.isDirectory) info["dsize"] = node.size;
  if (node.modified) info["mtime"] = unixSeconds(*node.modified);
  if (node.isWorktree) info[worktreeKey] = true;
  return info;
}

// What the folder contains beyond its children.
OrderedJson smallThingsOf(const Node& folder) {
  std::int64_t files = folder.fileCount;
  for (const Node& child : folder.children) {
    files = saturatingSubtract(files, child.isDirectory ? child.fileCount : 1);
  }
  if (folder.unlistedSize() == 0 && files <= 0) return nullptr;
  return {{"name", smallName}, {"dsize", folder.unlistedSize()}, {"notreg", true}, {smallFilesKey, files}};
}

// What the scan says of an item: that it could not be read, or was left out.
struct Remark {
  // The way to the item from the nearest folder that has a node; empty for that node itself.
  std::vector<std::string> names;
  const char* key;
  OrderedJson value;
};
using Remarks = std::map<const Node*, std::vector<Remark>>;

Remarks remarksOf(const Snapshot& snapshot) {
  Remarks remarks;
  const auto add = [&](const std::string& path, const char* key, OrderedJson value) {
    auto names = snapshot.components(path);
    if (!names) return;
    const Node* node = &snapshot.root;
    auto rest = names->begin();
    for (; rest != names->end(); ++rest) {
      const Node* next = node->child(*rest);
      if (next == nullptr) break;
      node = next;
    }
    names->erase(names->begin(), rest);
    remarks[node].push_back({.names = std::move(*names), .key = key, .value = std::move(value)});
  };
  for (const std::string& path : snapshot.coverage.unread.paths) add(path, unreadKey, true);
  for (const LeftOut& item : snapshot.coverage.leftOut)
    add(item.path, leftOutKey, item.kind == LeftOut::Kind::excluded ? "pattern" : otherDisk);
  return remarks;
}

// The item of a remark, in the folders on the way to it. Nobody knows what could not be read; it is written
// as a folder.
std::string remarkText(const Remark& remark) {
  const bool isFolder = remark.key == unreadKey;
  std::string text;
  for (const std::string& name : remark.names) {
    const bool isLast = &name == &remark.names.back();
    OrderedJson info{{"name", withInvalidUtf8Replaced(name)}};
    if (isLast) info[remark.key] = remark.value;
    text += (!isLast || isFolder ? "[" : "") + dumped(info) + (isLast ? "" : ",\n");
  }
  return text + std::string(remark.names.size() - (isFolder ? 0 : 1), ']');
}

// Writes the tree with a stack of its own, as deep trees would overflow the program's.
void writeTree(const Snapshot& snapshot, std::string& text) {
  struct Level {
    const Node* folder;
    std::size_t next = 0;
  };
  std::vector<Level> levels;
  const Remarks remarks = remarksOf(snapshot);
  const auto open = [&](const Node& folder) {
    OrderedJson info = infoOf(folder);
    std::string others;
    const auto found = remarks.find(&folder);
    for (const Remark& remark : found == remarks.end() ? std::vector<Remark>{} : found->second) {
      if (!remark.names.empty()) {
        others += ",\n" + remarkText(remark);
      } else if (remark.key == unreadKey) {
        info[unreadKey] = true;
      }
    }
    text += '[' + dumped(info) + others;
    if (const OrderedJson rest = smallThingsOf(folder); !rest.is_null()) text += ",\n" + dumped(rest);
    levels.push_back({&folder});
  };
  open(snapshot.root);
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.folder->children.size()) {
      text += ']';
      levels.pop_back();
      continue;
    }
    const Node& child = level.folder->children[level.next++];
    text += ",\n";
    child.isDirectory ? open(child) : void(text += dumped(infoOf(child)));
  }
}

Error failure(std::string_view what) {
  return {.domain = std::string{NcduFormat::domain},
          .message = i18n("not an export of disk usage: {problem}", {{"problem", what}})};
}

// The keys of an item or of the header that are used here.
struct Info {
  std::string name;
  Bytes size = 0;
  std::optional<std::int64_t> modified;
  std::optional<std::uint64_t> device;
  std::uint64_t inode = 0;
  bool hasOtherNames = false;
  bool isWorktree = false;
  bool isUnread = false;
  std::optional<LeftOut::Kind> leftOut;
  std::optional<std::int64_t> smallFiles;
  // Of the header:
  std::string host;
  std::string program;
  std::optional<std::int64_t> timestamp;
  Bytes minimum = 0;
};

// An event-based parser (SAX): [major, minor, {header}, [{folder}, {file}, [{folder}, …], …]]
class Reader final : public nlohmann::json_sax<OrderedJson> {
 public:
  NcduFormat::Imported result;
  std::string problem;

  bool null() override { return value(); }
  bool boolean(bool flag) override {
    if (info_ && key_ == "hlnkc") info_->hasOtherNames = flag;
    if (info_ && key_ == worktreeKey) info_->isWorktree = flag;
    if (info_ && key_ == unreadKey) info_->isUnread = flag;
    return value();
  }
  bool number_integer(std::int64_t number) override { return whole(number); }
  bool number_unsigned(std::uint64_t number) override {
    if (info_ && key_ == "ino") info_->inode = number;
    if (info_ && key_ == "dev") info_->device = number;
    return whole(static_cast<std::int64_t>(std::min<std::uint64_t>(number, INT64_MAX)));
  }
  bool number_float(double /*number*/, const std::string& /*text*/) override { return value(); }
  bool string(std::string& text) override {
    if (!info_) return value();
    if (key_ == leftOutKey) {
      const bool isElsewhere = text == otherDisk || text == "othfs" || text == kernelDisk;
      info_->leftOut = isElsewhere ? LeftOut::Kind::volume : LeftOut::Kind::excluded;
    } else if (key_ == "name") {
      info_->name = std::move(text);
    } else if (key_ == "host") {
      info_->host = std::move(text);
    } else if (key_ == "progname") {
      info_->program = std::move(text);
    }
    return value();
  }
  bool binary(OrderedJson::binary_t& /*value*/) override { return false; }
  bool key(std::string& name) override {
    if (ignored_ == 0) key_ = name;
    return true;
  }
  bool start_object(std::size_t /*size*/) override {
    if (ignored_ > 0 || info_) return ++ignored_ > 0;
    if (arrays_ == 0 || (arrays_ == 1 && position_ != 2)) return fail(i18n("an object where none belongs"));
    info_ = Info{};
    return true;
  }
  bool end_object() override {
    if (ignored_ > 0) return --ignored_, true;
    const Info info = *std::exchange(info_, std::nullopt);
    return arrays_ == 1 ? takeHeader(info) : takeItem(info);
  }
  bool start_array(std::size_t /*size*/) override {
    if (ignored_ > 0 || info_) return ++ignored_ > 0;
    if (arrays_ == 1 && position_ != 3) return fail(i18n("no header before the tree"));
    if (arrays_ > 1 && isOpening_) return fail(i18n("a folder without a name"));
    if (arrays_ > Node::maximumDepth) return fail(i18n("the tree is too deep"));
    isOpening_ = ++arrays_ > 1;
    return true;
  }
  bool end_array() override {
    if (ignored_ > 0) return --ignored_, true;
    if (isOpening_) return fail(i18n("a folder without a name"));
    if (--arrays_ > 0) closeFolder();
    return true;
  }
  bool parse_error(std::size_t position, const std::string& /*token*/,
                   const OrderedJson::exception& /*failure*/) override {
    return fail(i18n("no JSON at byte {number}", {{"number", std::to_string(position)}}));
  }

  bool isComplete() const { return hasTree_; }

 private:
  struct Folder {
    Node node;
    std::uint64_t device = 0;
  };

  bool fail(std::string_view what) {
    problem = what;
    return false;
  }

  bool whole(std::int64_t number) {
    if (info_ && ignored_ == 0) {
      if (key_ == "dsize") info_->size = std::max<Bytes>(0, number);
      if (key_ == "mtime") info_->modified = number;
      if (key_ == "timestamp") info_->timestamp = number;
      if (key_ == minimumKey) info_->minimum = std::max<Bytes>(0, number);
      if (key_ == smallFilesKey) info_->smallFiles = std::max<std::int64_t>(0, number);
    } else if (arrays_ == 1 && position_ == 0 && number != 1) {
      return fail(i18n("version {number} is unknown", {{"number", std::to_string(number)}}));
    }
    return value();
  }

  // A value that is not used, or was used by the caller.
  bool value() {
    if (info_ || ignored_ > 0) return true;
    if (arrays_ != 1 || position_ > 1) return fail(i18n("a value where an item belongs"));
    ++position_;
    return true;
  }

  bool takeHeader(const Info& header) {
    ++position_;
    result.host = header.host;
    result.program = header.program;
    result.snapshot.minNodeSize = header.minimum;
    result.snapshot.date = dateFromUnixSeconds(header.timestamp.value_or(0));
    return true;
  }

  bool takeItem(const Info& info) {
    if (info.name.empty()) return fail(i18n("an item without a name"));
    if (std::exchange(isOpening_, false)) {
      const std::uint64_t device = info.device.value_or(folders_.empty() ? 0 : folders_.back().device);
      folders_.push_back(
          {.node = {.name = info.name, .size = info.size, .isDirectory = true, .isWorktree = info.isWorktree},
           .device = device});
      if (info.isUnread) noteUnread(result.snapshot.coverage.unread.folders, "");
      return true;
    }
    if (info.leftOut) return leaveOut(info);
    Folder& folder = folders_.back();
    if (info.isUnread) noteUnread(result.snapshot.coverage.unread.entries, info.name);
    const bool isCounted =
        info.hasOtherNames && !linked_.insert({info.device.value_or(folder.device), info.inode}).second;
    const Bytes size = isCounted ? 0 : info.size;
    folder.node.size = saturatingAdd(folder.node.size, size);
    folder.node.fileCount = saturatingAdd(folder.node.fileCount, info.smallFiles.value_or(1));
    if (info.smallFiles) return true;
    Node file{.name = info.name, .size = size};
    if (info.modified) file.modified = dateFromUnixSeconds(*info.modified);
    folder.node.children.push_back(std::move(file));
    return true;
  }

  std::string currentPath() const {
    std::string path;
    for (const Folder& folder : folders_)
      path = path.empty() ? folder.node.name : Paths::join(path, folder.node.name);
    return path;
  }

  // `name`: of an item of the open folder; empty for that folder itself.
  void noteUnread(std::int64_t& count, const std::string& name) {
    ++count;
    auto& paths = result.snapshot.coverage.unread.paths;
    if (paths.size() < Unread::pathLimit)
      paths.push_back(name.empty() ? currentPath() : Paths::join(currentPath(), name));
  }

  bool leaveOut(const Info& info) {
    auto& items = result.snapshot.coverage.leftOut;
    if (items.size() < mostLeftOut)
      items.push_back({.path = Paths::join(currentPath(), info.name), .kind = *info.leftOut});
    return true;
  }

  // A folder too small for a node, which is there only for what could not be read in it.
  bool isOnlyNamed(const Node& folder) const {
    return result.snapshot.minNodeSize > 0 && folder.size == 0 && folder.fileCount == 0 &&
           folder.children.empty();
  }

  void closeFolder() {
    Node node = std::move(folders_.back().node);
    folders_.pop_back();
    sortBySize(node.children);
    if (folders_.empty()) {
      hasTree_ = true;
      std::ranges::sort(result.snapshot.coverage.leftOut);
      std::ranges::sort(result.snapshot.coverage.unread.paths);
      ++position_;
      result.snapshot.fileCount = node.fileCount;
      result.snapshot.root = std::move(node);
      return;
    }
    if (isOnlyNamed(node)) return;
    Node& parent = folders_.back().node;
    parent.size = saturatingAdd(parent.size, node.size);
    parent.fileCount = saturatingAdd(parent.fileCount, node.fileCount);
    parent.children.push_back(std::move(node));
  }

  static constexpr std::size_t mostLeftOut = 10'000;

  std::size_t arrays_ = 0;    // open ones
  std::size_t ignored_ = 0;   // open values of unknown keys
  std::size_t position_ = 0;  // in the outermost array
  bool isOpening_ = false;    // a folder's array has begun, and its name has not been read
  bool hasTree_ = false;
  std::optional<Info> info_;
  std::string key_;
  std::vector<Folder> folders_;
  std::set<std::pair<std::uint64_t, std::uint64_t>> linked_;
};

}  // namespace

std::string NcduFormat::encode(const Snapshot& snapshot, std::string_view host,
                               std::string_view programVersion) {
  const OrderedJson header{{"progname", "spacemint"},
                           {"progver", std::string{programVersion}},
                           {"timestamp", unixSeconds(snapshot.date)},
                           {"host", withInvalidUtf8Replaced(host)},
                           {minimumKey, snapshot.minNodeSize}};
  std::string text = "[1,2," + dumped(header) + ",\n";
  writeTree(snapshot, text);
  return text + "]\n";
}

std::expected<NcduFormat::Imported, Error> NcduFormat::decode(std::string_view text) {
  // Programs may write names as they are on the disk.
  if (!isValidUtf8(text)) return decode(withInvalidUtf8Replaced(text));
  Reader reader;
  try {
    const bool isRead = OrderedJson::sax_parse(text, &reader);
    if (isRead && reader.isComplete()) return std::move(reader.result);
  } catch (const std::exception& exception) {
    reader.problem = exception.what();
  }
  return std::unexpected(failure(reader.problem.empty() ? i18n("there is no tree") : reader.problem));
}

}  // namespace spacemint
