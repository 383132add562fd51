#pragma once

#include "Spacemint/views/ItemRows.h"
#include "core/analysis/Search.h"

#include <QList>
#include <QStringList>

namespace spacemint {

/// The largest files of the scan, or the files and folders that a search finds. Main thread only; the search
/// runs on another thread.
class Files : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(spacemint::ItemRows* largest READ largest CONSTANT)
  /// What the rows are.
  Q_PROPERTY(QString title READ title NOTIFY changed)
  /// The words of the search.
  Q_PROPERTY(QString words READ words WRITE setWords NOTIFY wordsChanged)
  /// How much the search found, or why it is not understood.
  Q_PROPERTY(QString status READ status NOTIFY changed)
  Q_PROPERTY(bool isUnderstood READ isUnderstood NOTIFY changed)
  /// The kinds of files in the scan, largest first: their names with the sizes, their shares of the scan, and
  /// the kind that the search is limited to, or -1.
  Q_PROPERTY(QStringList kinds READ kinds NOTIFY kindsChanged)
  Q_PROPERTY(QStringList kindSizes READ kindSizes NOTIFY kindsChanged)
  Q_PROPERTY(QList<double> kindShares READ kindShares NOTIFY kindsChanged)
  Q_PROPERTY(int kind READ kind NOTIFY kindsChanged)
  Q_PROPERTY(QStringList ages READ ages NOTIFY wordsChanged)
  /// The age that the search is limited to.
  Q_PROPERTY(int age READ age NOTIFY wordsChanged)

 public:
  explicit Files(const UiHost& host);

  ItemRows* largest() { return &largest_; }
  QString title() const;
  QString words() const;
  void setWords(const QString& words);
  const QString& status() const { return status_; }
  bool isUnderstood() const { return query_.has_value(); }
  QStringList kinds() const;
  QStringList kindSizes() const;
  QList<double> kindShares() const;
  int kind() const;
  QStringList ages() const;
  int age() const;

  /// Limits the search to a kind, or takes that limit away.
  Q_INVOKABLE void chooseKind(int index);
  Q_INVOKABLE void chooseAge(int index);

 Q_SIGNALS:
  void wordsChanged();
  void changed();
  void kindsChanged();

 private:
  struct Found;

  void update();
  void showLargest();
  void startSearch();
  void show(Found found);
  std::optional<std::size_t> offeredAge() const;
  /// The size of the smallest files in the scan.
  Bytes minimum() const;
  ListItem itemOf(const std::string& path, Bytes size, const std::optional<Date>& modified) const;
  std::string subtitleOf(const std::string& path, const std::optional<Date>& modified) const;
  void setCondition(std::string_view condition, std::string_view value);

  const UiHost& host_;
  ItemRows largest_;
  /// Whether the rows are what a search found.
  bool showsFound_ = false;
  std::expected<SearchQuery, Error> query_;
  QString status_;
  /// Counts the searches, so that a late answer does not replace a newer one.
  std::uint64_t searches_ = 0;
};

}  // namespace spacemint
