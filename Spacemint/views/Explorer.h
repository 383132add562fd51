#pragma once

#include "Spacemint/views/Folders.h"
#include "Spacemint/views/ItemRows.h"
#include "Spacemint/views/ShownFolder.h"
#include "core/analysis/Search.h"

#include <QStringList>

#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace spacemint {

/// The folders of the scan as pictures and as a tree of rows, which share one selection, one folder that is
/// open, and what is under the pointer. Main thread only.
class Explorer : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  /// The tree of rows; made only while `showsRows`.
  Q_PROPERTY(spacemint::ItemRows* rows READ rows CONSTANT)
  /// The width of the list beside the map as the person dragged it; 0 before that.
  Q_PROPERTY(qreal listWidth READ listWidth WRITE setListWidth NOTIFY listWidthChanged)
  Q_PROPERTY(bool showsRows READ showsRows WRITE setShowsRows NOTIFY rowsShownChanged)
  /// The folders from the root of the scan to the open one.
  Q_PROPERTY(QStringList crumbs READ crumbs NOTIFY changed)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString sizeText READ sizeText NOTIFY changed)
  Q_PROPERTY(QString mapName READ mapName NOTIFY changed)
  /// What the picture shows, in one sentence.
  Q_PROPERTY(QString summary READ summary NOTIFY changed)
  Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed)
  /// Whether the folder has items that are large enough to be listed.
  Q_PROPERTY(bool hasItems READ hasItems NOTIFY changed)
  /// The order of the rows, among `orders`.
  Q_PROPERTY(QStringList orders READ orders CONSTANT)
  Q_PROPERTY(int order READ order WRITE setOrder NOTIFY changed)
  /// What the colours mean.
  Q_PROPERTY(QStringList colourings READ colourings CONSTANT)
  Q_PROPERTY(Colouring colouring READ colouring WRITE setColouring NOTIFY changed)
  Q_PROPERTY(bool canCompare READ canCompare NOTIFY changed)
  Q_PROPERTY(QString legend READ legend NOTIFY changed)
  Q_PROPERTY(QString shrankLegend READ shrankLegend NOTIFY changed)
  Q_PROPERTY(QStringList ages READ ages CONSTANT)
  /// The index of the selected row; -1 for none.
  Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectionChanged)
  // What is under the pointer: its index in `rows`, and the index of the child of the open folder that it is
  // or is in; -1 for none.
  Q_PROPERTY(int pointedRow READ pointedRow NOTIFY pointedChanged)
  Q_PROPERTY(int pointedChild READ pointedChild NOTIFY pointedChanged)
  // The thing under the pointer, else the selected one.
  Q_PROPERTY(QString aboutName READ aboutName NOTIFY aboutChanged)
  Q_PROPERTY(QString aboutDetail READ aboutDetail NOTIFY aboutChanged)
  /// The same without the share of the folder, for a narrow place.
  Q_PROPERTY(QString aboutBriefly READ aboutBriefly NOTIFY aboutChanged)
  Q_PROPERTY(bool isPointing READ isPointing NOTIFY aboutChanged)
 public:
  enum class Colouring { Growth, Age };
  Q_ENUM(Colouring)

  explicit Explorer(const UiHost& host);

  ItemRows* rows() { return &rows_; }
  bool showsRows() const { return showsRows_; }
  void setShowsRows(bool isShown);
  QStringList crumbs() const;
  QString title() const { return titleOf(folder_.path); }
  QString sizeText() const;
  QString mapName() const;
  QString summary() const;
  bool isEmpty() const { return folder_.node == nullptr || folder_.node->size <= 0; }
  bool hasItems() const { return !isEmpty() && !folder_.node->children.empty(); }
  static QStringList orders() { return Folders::orders(); }
  int order() const { return static_cast<int>(order_); }
  void setOrder(int order);
  QStringList colourings() const;
  Colouring colouring() const { return canCompare() ? colouring_ : Colouring::Age; }
  void setColouring(Colouring colouring);
  /// The same, also while there is nothing to compare with.
  Colouring chosenColouring() const { return colouring_; }
  qreal listWidth() const { return listWidth_; }
  void setListWidth(qreal width);
  bool canCompare() const { return folder_.changes != nullptr; }
  QString legend() const;
  QString shrankLegend() const;
  QStringList ages() const;
  int selectedRow() const { return rows_.indexOf(selected_); }
  int pointedRow() const { return rows_.indexOf(pointed_); }
  int pointedChild() const;
  QString aboutName() const { return aboutName_; }
  QString aboutDetail() const { return aboutDetail_; }
  QString aboutBriefly() const { return aboutBriefly_; }
  /// Whether something is under the pointer, so that the texts are about it.
  bool isPointing() const { return pointedTile_.has_value(); }

  // For the pictures.
  const ShownFolder& folder() const { return folder_; }
  std::optional<VolumeParts> volumeParts() const { return spacemint::volumeParts(host_.model, folder_); }
  const std::string& selected() const { return selected_; }
  const std::string& pointed() const { return pointed_; }
  Date now() const { return host_.desktop.clock.now(); }
  const std::string& locale() const { return host_.locale; }
  bool isSearching() const { return isSearching_; }
  /// Whether the search found the item or something in it, as far as that is known yet.
  bool isFound(const Node& node) const;
  QString nameOf(const Tile& tile) const;
  QString spoken(const Tile& tile) const;
  /// Selects the item at the path, and opens the rows down to it.
  void select(const std::string& path);
  /// Opens the folder at the path; does nothing for a file.
  void open(const std::string& path);
  /// What is under the pointer of a picture; null for nothing.
  void point(const std::string& path, const Tile* tile);

  Q_INVOKABLE void openCrumb(int index);
  Q_INVOKABLE void goUp();
  Q_INVOKABLE void selectRow(int index);
  Q_INVOKABLE void openRow(int index);
  /// The row of a list of this folder is under the pointer; -1 for none.
  Q_INVOKABLE void pointRow(spacemint::ItemRows* rows, int index);
  /// The unfolded row closes, else the row above it becomes the selected one; or the reverse.
  Q_INVOKABLE void turnRow(int index, bool isUnfolded);

 Q_SIGNALS:
  void changed();
  void listWidthChanged();
  void rowsShownChanged();
  void selectionChanged();
  void pointedChanged();
  void aboutChanged();
  /// The unfolded part of the account of the disk was asked for.
  void notInFilesWanted();

 private:
  struct Hits {
    // Holds the nodes.
    SharedSnapshot scan;
    SearchQuery query;
    // The largest.
    std::vector<SearchResult> shown;
    std::unordered_set<const Node*> folders;
  };

  void update();
  void updateRows();
  void updateAbout();
  void search();
  QString titleOf(const std::string& path) const;
  void addRows(const PicturedFolder& folder, const std::string& path, int depth,
               std::vector<ListItem>& items);
  ListItem itemOf(const Node& node, const ChangeTree* change, const std::string& path, int depth);
  std::vector<ListItem> foundItems();
  std::string changeColumn(const Node& node, const ChangeTree* change) const;
  void toggle(const std::string& path);
  std::optional<Tile> tileOfPath(const std::string& path) const;

  const UiHost& host_;
  ShownFolder folder_;
  ItemRows rows_;
  bool showsRows_ = false;
  std::set<std::string> unfolded_;
  std::string selected_;
  std::string pointed_;
  std::optional<Tile> pointedTile_;
  qreal listWidth_ = 0;
  ItemOrder order_ = ItemOrder::bySize;
  Colouring colouring_ = Colouring::Growth;
  /// Why the words of the search are not understood.
  std::string mistake_;
  bool isSearching_ = false;
  /// Of the last search that has ended; absent while there is none for the shown scan.
  std::optional<Hits> hits_;
  std::size_t searches_ = 0;
  QString aboutName_;
  QString aboutDetail_;
  QString aboutBriefly_;
};

}  // namespace spacemint
