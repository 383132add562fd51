#include "Spacemint/views/ItemRows.h"

#include "support/ModelFixture.h"

#include <QAbstractItemModelTester>

#include <algorithm>
#include <random>

namespace spacemint {
namespace {

using support::ModelFixture;
using testing::ElementsAre;
using testing::IsEmpty;

class ItemRowsTest : public ModelFixture {
 protected:
  UiHost host{makeModel(), desktop.desktop(), home, "en_US", {}};
  ItemRows rows{host};
  const QAbstractItemModelTester tester{&rows, QAbstractItemModelTester::FailureReportingMode::Fatal};

  QVariant at(int row, int role) const { return rows.data(rows.index(row), role); }
  int idAt(int row) const { return at(row, ItemRows::RowIdRole).toInt(); }

  std::string shown() const {
    std::string names;
    for (int i = 0; i < rows.count(); ++i) names += at(i, ItemRows::TitleRole).toString().toStdString();
    return names;
  }

  static std::vector<ListItem> named(std::string_view letters) {
    std::vector<ListItem> result;
    for (const char letter : letters) {
      result.push_back({.id = std::string{letter}, .path = std::string{"/home/ann/"} + letter});
    }
    return result;
  }
};

TEST_F(ItemRowsTest, rowsThatStayKeepTheirIdsWhateverHappensAroundThem) {
  std::mt19937 random{17};
  std::string letters = "abcdefghij";
  rows.assign(named(letters));
  std::map<char, int> ids;
  for (int step = 0; step < 300; ++step) {
    for (int i = 0; i < rows.count(); ++i) ids[letters[static_cast<std::size_t>(i)]] = idAt(i);
    const std::string before = letters;
    // Moves one row, and adds or removes another.
    if (!letters.empty()) {
      const char moved = letters[random() % letters.size()];
      std::erase(letters, moved);
      letters.insert(random() % (letters.size() + 1), 1, moved);
    }
    const char other = static_cast<char>('a' + random() % 26);
    if (std::erase(letters, other) == 0) letters.insert(random() % (letters.size() + 1), 1, other);
    rows.assign(named(letters));
    ASSERT_EQ(shown(), letters);
    for (int i = 0; i < rows.count(); ++i) {
      const char letter = letters[static_cast<std::size_t>(i)];
      EXPECT_EQ(idAt(i), before.contains(letter) ? ids[letter] : idAt(i)) << before << " -> " << letters;
    }
  }
}

TEST_F(ItemRowsTest, tellsOnlyWhatChanged) {
  rows.assign(named("abcd"));
  std::vector<std::string> told;
  QObject::connect(&rows, &ItemRows::dataChanged, [&](const QModelIndex& first, const QModelIndex& last) {
    told.push_back("changed " + std::to_string(first.row()) + "-" + std::to_string(last.row()));
  });
  QObject::connect(&rows, &ItemRows::rowsInserted, [&](const QModelIndex&, int first, int last) {
    told.push_back("inserted " + std::to_string(first) + "-" + std::to_string(last));
  });
  QObject::connect(&rows, &ItemRows::rowsRemoved, [&](const QModelIndex&, int first, int last) {
    told.push_back("removed " + std::to_string(first) + "-" + std::to_string(last));
  });
  QObject::connect(&rows, &ItemRows::modelReset, [&] { told.emplace_back("reset"); });
  const auto toldBy = [&](std::vector<ListItem> next) {
    told.clear();
    rows.assign(std::move(next));
    return told;
  };
  EXPECT_THAT(toldBy(named("abcd")), IsEmpty());
  auto grown = named("abcd");
  grown[2].size = 7;
  EXPECT_THAT(toldBy(grown), ElementsAre("changed 2-2"));
  EXPECT_THAT(toldBy(named("axbcdyz")), ElementsAre("inserted 1-1", "changed 3-3", "inserted 5-6"));
  EXPECT_THAT(toldBy(named("acdyz")), ElementsAre("removed 1-2"));
  EXPECT_THAT(toldBy(named("zacdy")), ElementsAre("removed 4-4", "inserted 0-0"));
  EXPECT_THAT(toldBy(named("other")), ElementsAre("reset"));
}

TEST_F(ItemRowsTest, aRowsActionsGoByItsBytes) {
  const std::string path = inHome("not \xFF utf");
  rows.assign({{.id = "first"}, {.id = path, .path = path, .size = 5'000'000, .canTrash = true}});
  EXPECT_EQ(at(1, ItemRows::TitleRole).toString(), QStringLiteral("not \uFFFD utf"));
  EXPECT_EQ(at(1, ItemRows::SizeTextRole).toString(), QStringLiteral("5 MB"));
  const int rowId = idAt(1);
  rows.assign({{.id = path, .path = path, .size = 5'000'000, .canTrash = true}, {.id = "last"}});

  rows.reveal(rowId);
  EXPECT_THAT(desktop.opener.revealed, ElementsAre(path));
  rows.remove(rowId);
  ASSERT_TRUE(model->cleanups().confirmation());
  EXPECT_EQ(model->cleanups().confirmation()->plan.title, "Move to Trash?");
  EXPECT_EQ(model->cleanups().confirmation()->plan.subject, "not \xFF utf · 5 MB");
  rows.showInFolders(rowId);
  EXPECT_EQ(model->tab(), Tab::folders);
  EXPECT_EQ(model->folderPath(), home);

  rows.assign({});
  model->cleanups().dismiss();
  rows.remove(rowId);
  EXPECT_FALSE(model->cleanups().confirmation());
}

TEST_F(ItemRowsTest, whatIsInTheTrashCanOnlyBeDeleted) {
  const struct {
    std::string path;
    bool isInTrash;
  } cases[]{{inHome(".Trash/old.zip"), true},
            {inHome(".local/share/Trash/files/old.zip"), true},
            {inHome(".Trashes/old.zip"), false},
            {inHome("Trash/old.zip"), false},
            {"/.Trash/old.zip", false}};
  for (const auto& [path, isInTrash] : cases) {
    rows.assign({{.id = path, .path = path, .canTrash = true}});
    EXPECT_EQ(at(0, ItemRows::IsInTrashRole).toBool(), isInTrash) << path;
    rows.remove(idAt(0));
    const CleanupPlan& asked = model->cleanups().confirmation()->plan;
    EXPECT_EQ(asked.title, isInTrash ? "Delete permanently?" : "Move to Trash?") << path;
    EXPECT_EQ(asked.button, isInTrash ? "Delete" : "Move to Trash") << path;
    EXPECT_EQ(asked.note == "This removes it for good.", isInTrash) << path;
  }
}

TEST_F(ItemRowsTest, aBusyRowsButtonDoesNothing) {
  int presses = 0;
  rows.assign({{.id = "npm", .buttonTitle = "Clean up", .onButton = [&] { ++presses; }}, {.id = "pip"}});
  int told = 0;
  QObject::connect(&rows, &ItemRows::dataChanged, [&] { ++told; });
  desktop.tasks.hold(Tasks::Priority::alone);
  model->cleanups().perform({.id = "npm", .title = "", .steps = {{.path = inHome("x")}}});
  EXPECT_EQ(told, 1);
  EXPECT_TRUE(at(0, ItemRows::IsBusyRole).toBool());
  EXPECT_FALSE(at(1, ItemRows::IsBusyRole).toBool());
  rows.pressButton(idAt(0));
  EXPECT_EQ(presses, 0);
  desktop.tasks.release(Tasks::Priority::alone);
  desktop.advance(std::chrono::seconds{2});
  rows.pressButton(idAt(0));
  EXPECT_EQ(presses, 1);
}

TEST_F(ItemRowsTest, aRowUnfoldsToRowsThatStay) {
  rows.assign({{.id = "venv", .parts = named("ab")}});
  auto* parts = at(0, ItemRows::PartsRole).value<ItemRows*>();
  ASSERT_NE(parts, nullptr);
  const int second = parts->data(parts->index(1), ItemRows::RowIdRole).toInt();
  rows.assign({{.id = "new", .parts = named("x")}, {.id = "venv", .parts = named("b")}});
  ASSERT_EQ(at(1, ItemRows::PartsRole).value<ItemRows*>(), parts);
  EXPECT_EQ(parts->count(), 1);
  EXPECT_EQ(parts->data(parts->index(0), ItemRows::RowIdRole).toInt(), second);
}

}  // namespace
}  // namespace spacemint
