#include "Spacemint/views/FreeLine.h"

#include "Spacemint/views/DateText.h"
#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/wording/PictureText.h"
#include "ui_kit/Theme.h"
#include "ui_kit/UiKit.h"

#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <array>
#include <cmath>

namespace spacemint {

// The data

SpaceHistory::SpaceHistory(const UiHost& host) : host_(host) {
  AppModel& model = host_.model;
  connect(&model, &AppModel::statusChanged, this, &SpaceHistory::update);
  connect(&model.history(), &ScanHistory::entriesChanged, this, &SpaceHistory::update);
  connect(&model.history(), &ScanHistory::baselineEntryChanged, this, &SpaceHistory::changed);
  connect(&model.currentFindings(), &CurrentFindings::updated, this, &SpaceHistory::update);
  update();
}

void SpaceHistory::update() {
  const auto read = [record = host_.model.freeSpace(), now = host_.desktop.clock.now()] {
    return record.readings(now);
  };
  host_.desktop.tasks.run(Tasks::Priority::utility, this, read,
                          [this](auto readings) { show(std::move(readings)); });
}

void SpaceHistory::show(std::vector<FreeSpaceReading> readings) {
  const auto& volume = host_.model.volume().status();
  const auto& change = host_.model.findings().spaceChange;
  const auto& baseline = host_.model.history().baselineEntry();
  // The scans that are compared knew the free space, too, and may be older than the record.
  const auto add = [&](Date date, Bytes free) {
    if (readings.empty() || date < readings.front().date) readings.insert(readings.begin(), {date, free, 0});
  };
  const SharedSnapshot& scan = host_.model.history().snapshot();
  // A scan that was brought up to date has the free space of the update.
  if (scan && !host_.model.history().updatedAt()) add(scan->date, scan->volumeFree);
  if (change && baseline) add(baseline->date, change->freeBefore);
  line_ = {};
  // The newest scan is the one that is compared, not one to compare with.
  entries_ = host_.model.history().entries();
  if (!entries_.empty()) entries_.erase(entries_.begin());
  if (volume) {
    std::vector<Date> scans;
    for (const auto& entry : entries_) scans.push_back(entry.date);
    line_ = spaceLine({.readings = readings,
                       .now = {host_.desktop.clock.now(), volume->free, volume->total},
                       .scans = scans,
                       .warningLevel = host_.model.prefs().warningThresholdGB() * gigabyte});
  }
  Q_EMIT changed();
}

QString SpaceHistory::text() const {
  return line_.points.size() == 1 ? ShownText::plain(PictureText::lineBegins()) : QString{};
}

int SpaceHistory::chosen() const {
  const auto& baseline = host_.model.history().baselineEntry();
  for (int place = 0; baseline && place < count(); ++place) {
    if (entries_[scanAt(place).index] == *baseline) return place;
  }
  return -1;
}

QString SpaceHistory::chosenText() const {
  return isPlace(chosen()) ? help(chosen()).section(u'\n', 0, 0) : QString{};
}

void SpaceHistory::choose(int place) {
  if (isPlace(place)) host_.model.history().setBaselineEntry(entries_[scanAt(place).index]);
}

QString SpaceHistory::help(int place) const {
  if (!isPlace(place)) return {};
  const SpacePoint& point = scanAt(place).point;
  const std::string moment = DateText::moment(point.date, host_.locale).toStdString();
  return ShownText::sentence(PictureText::momentHelp(moment, point.free, place == chosen(), host_.locale));
}

QString SpaceHistory::levelText() const {
  return ShownText::sentence(
      ByteFormat::string(host_.model.prefs().warningThresholdGB() * gigabyte, host_.locale));
}

QString SpaceHistory::dateText(Date date) const {
  const auto length = timeBetween(line_.points.front().date, line_.points.back().date);
  return length < std::chrono::days{2} ? DateText::time(date, host_.locale) : DateText::day(date);
}

// The line

FreeLine::FreeLine(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  setAcceptHoverEvents(true);
  setAcceptedMouseButtons(Qt::LeftButton);
}

void FreeLine::componentComplete() {
  QQuickPaintedItem::componentComplete();
  connect(&theme(), &Theme::isDarkChanged, this, [this] { update(); });
  connect(&theme(), &Theme::textScaleChanged, this, [this] { update(); });
}

void FreeLine::setHistory(SpaceHistory* history) {
  if (history == history_) return;
  if (history_ != nullptr) history_->disconnect(this);
  history_ = history;
  connect(history_, &SpaceHistory::changed, this, [this] {
    setPointed(-1);
    update();
  });
  Q_EMIT historyChanged();
}

void FreeLine::setLineHeight(qreal height) {
  if (height == lineHeight_) return;
  lineHeight_ = height;
  update();
  Q_EMIT lineHeightChanged();
}

void FreeLine::setMirrored(bool isMirrored) {
  if (isMirrored == isMirrored_) return;
  isMirrored_ = isMirrored;
  update();
  Q_EMIT mirroredChanged();
  Q_EMIT pointedChanged();
}

const Theme& FreeLine::theme() const {
  return UiKit::theme(*qmlEngine(this));
}

// The last point is a dot and the chosen scan a ring, which need room at the ends and the top.
QPointF FreeLine::pointOf(const SpacePoint& point) const {
  constexpr qreal left = 5;
  constexpr qreal right = 6;
  constexpr qreal top = 5;
  return {left + point.x * (width() - left - right), std::max(top, point.y * lineHeight_)};
}

QPointF FreeLine::pointedAt() const {
  if (pointed_ < 0) return {};
  const QPointF point = pointOf(scanPoint(pointed_));
  return {seen(point.x()), point.y()};
}

const SpacePoint& FreeLine::scanPoint(int place) const {
  const auto& scans = history_->line().scans;
  return scans.at(scans.size() - 1 - static_cast<std::size_t>(place)).point;
}

int FreeLine::placeAt(qreal x) const {
  constexpr qreal reach = 14;
  int nearest = -1;
  qreal distance = reach;
  for (int place = 0; place < history_->count(); ++place) {
    const qreal away = std::abs(pointOf(scanPoint(place)).x() - x);
    if (away > distance) continue;
    distance = away;
    nearest = place;
  }
  return nearest;
}

void FreeLine::setPointed(int place) {
  if (place == pointed_) return;
  pointed_ = place;
  update();
  Q_EMIT pointedChanged();
}

void FreeLine::hoverMoveEvent(QHoverEvent* event) {
  setPointed(placeAt(seen(event->position().x())));
}

void FreeLine::hoverLeaveEvent(QHoverEvent* /*event*/) {
  setPointed(-1);
}

void FreeLine::mousePressEvent(QMouseEvent* event) {
  const int place = placeAt(seen(event->position().x()));
  if (place < 0) return event->ignore();
  history_->choose(place);
}

void FreeLine::paint(QPainter* painter) {
  if (history_ == nullptr || !history_->isKnown()) return;
  painter->setRenderHint(QPainter::Antialiasing);
  QFont font{theme().sansFamily()};
  constexpr qreal size = 11;
  font.setPixelSize(static_cast<int>(std::round(size * theme().textScale())));
  painter->setFont(font);
  const QTransform mirror{-1, 0, 0, 1, width(), 0};
  if (isMirrored_) painter->setTransform(mirror, true);
  paintGround(*painter);
  paintLine(*painter);
  paintScans(*painter);
  paintDates(*painter);
}

// Whether the line, or the mark of the chosen scan, goes through the box.
bool FreeLine::isCrossed(const QRectF& box) const {
  if (const int chosen = history_->chosen(); chosen >= 0) {
    const qreal x = pointOf(scanPoint(chosen)).x();
    if (x > box.left() - 1 && x < box.right() + 1) return true;
  }
  const auto& points = history_->line().points;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const QPointF from = pointOf(points[i - 1]);
    const QPointF to = pointOf(points[i]);
    if (to.x() < box.left() || from.x() > box.right()) continue;
    const auto heightAt = [&](qreal x) {
      const qreal length = to.x() - from.x();
      return length > 0 ? std::lerp(from.y(), to.y(), (x - from.x()) / length) : to.y();
    };
    const auto [upper, lower] =
        std::minmax({heightAt(std::max(from.x(), box.left())), heightAt(std::min(to.x(), box.right()))});
    if (upper < box.bottom() && lower > box.top()) return true;
  }
  return false;
}

// A place for the text over the level, which is at `y`: over its beginning, or where the line leaves room.
QRectF FreeLine::levelBox(const QSizeF& size, qreal y) const {
  constexpr qreal gap = 2;
  constexpr qreal step = 12;
  const auto box = [&](qreal x) { return QRectF{QPointF{x, y - size.height()}, size}; };
  for (qreal x = gap; x + size.width() < width() - step; x += step) {
    if (!isCrossed(box(x))) return box(x);
  }
  return box(gap);
}

// A text is never mirrored, only its place.
void FreeLine::write(QPainter& painter, const QRectF& box, Qt::Alignment alignment,
                     const QString& text) const {
  constexpr int flags = Qt::AlignAbsolute | Qt::TextDontClip;
  if (!isMirrored_) return painter.drawText(box, static_cast<int>(alignment) | flags, text);
  painter.save();
  painter.setTransform(QTransform{-1, 0, 0, 1, width(), 0}, true);
  const QRectF turned{width() - box.right(), box.y(), box.width(), box.height()};
  const Qt::Alignment horizontal = alignment.testFlag(Qt::AlignLeft)    ? Qt::AlignRight
                                   : alignment.testFlag(Qt::AlignRight) ? Qt::AlignLeft
                                                                        : Qt::AlignHCenter;
  const Qt::Alignment vertical = alignment & Qt::AlignVertical_Mask;
  painter.drawText(turned, static_cast<int>(horizontal | vertical) | flags, text);
  painter.restore();
}

void FreeLine::paintGround(QPainter& painter) const {
  const SpaceLine& line = history_->line();
  const qreal end = pointOf(line.points.back()).x();
  painter.fillRect(QRectF{0, lineHeight_ - 1, width(), 1}, theme().border());
  if (const int chosen = history_->chosen(); chosen >= 0) {
    QColor ground = theme().selected();
    constexpr float faint = 0.6F;
    ground.setAlphaF(faint);
    const qreal from = pointOf(scanPoint(chosen)).x();
    painter.fillRect(QRectF{from, 0, end - from, lineHeight_}, ground);
  }
  if (!line.level || line.points.size() < 2) return;
  const qreal y = std::round(*line.level * lineHeight_) - 0.5;
  painter.setPen(QPen{theme().warning(), 1, Qt::CustomDashLine, Qt::FlatCap});
  QPen pen = painter.pen();
  pen.setDashPattern({3, 3});
  painter.setPen(pen);
  painter.drawLine(QPointF{0, y}, QPointF{width(), y});
  painter.setPen(theme().secondary());
  const QString text = history_->levelText();
  // Letters that come from another font may be higher than those of the font.
  write(painter, levelBox(QFontMetricsF{painter.font()}.size(Qt::TextSingleLine, text), y),
        Qt::AlignLeft | Qt::AlignVCenter, text);
}

void FreeLine::paintLine(QPainter& painter) const {
  const auto& points = history_->line().points;
  const QPen known{theme().ink(), 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
  QPen unknown = known;
  unknown.setDashPattern({2 / known.widthF(), 4 / known.widthF()});
  unknown.setCapStyle(Qt::FlatCap);
  QPolygonF run;
  const auto finishRun = [&] {
    painter.setPen(known);
    painter.drawPolyline(run);
    run.clear();
  };
  for (const SpacePoint& point : points) {
    if (point.isAfterGap) {
      const QPointF last = run.back();
      finishRun();
      painter.setPen(unknown);
      painter.drawLine(last, pointOf(point));
    }
    run << pointOf(point);
  }
  finishRun();
}

void FreeLine::paintScans(QPainter& painter) const {
  constexpr qreal tick = 6;
  const int chosen = history_->chosen();
  for (int place = 0; place < history_->count(); ++place) {
    const QPointF at = pointOf(scanPoint(place));
    const qreal x = std::round(at.x());
    painter.fillRect(QRectF{x, lineHeight_ - tick, 1, tick}, theme().secondary());
    if (place == pointed_ && place != chosen) {
      painter.fillRect(QRectF{x, 0, 1, lineHeight_}, theme().secondary());
      painter.setPen(Qt::NoPen);
      painter.setBrush(theme().ink());
      painter.drawEllipse(at, 4, 4);
    }
  }
  if (chosen >= 0) {
    const QPointF at = pointOf(scanPoint(chosen));
    painter.fillRect(QRectF{std::round(at.x()) - 1, 0, 2, lineHeight_}, theme().ink());
    painter.setPen(QPen{theme().ink(), 2});
    painter.setBrush(theme().canvas());
    painter.drawEllipse(at, 4, 4);
  }
  const std::array colours{theme().ink(), theme().warning(), theme().critical()};
  constexpr qreal last = 3.5;
  painter.setPen(Qt::NoPen);
  painter.setBrush(colours.at(static_cast<std::size_t>(history_->level())));
  painter.drawEllipse(pointOf(history_->line().points.back()), last, last);
}

void FreeLine::paintDates(QPainter& painter) const {
  const SpaceLine& line = history_->line();
  const QRectF below{0, lineHeight_ + 2, width(), height() - lineHeight_ - 2};
  painter.setPen(theme().secondary());
  const QFontMetricsF metrics{painter.font()};
  const QString now = ShownText::plain(PictureText::now());
  write(painter, below, Qt::AlignRight | Qt::AlignTop, now);
  if (line.points.size() < 2) return;
  const Date begin = line.points.front().date;
  const QString first = history_->dateText(begin);
  write(painter, below, Qt::AlignLeft | Qt::AlignTop, first);
  const auto half = timeBetween(begin, line.points.back().date) / 2;
  const QString middle = history_->dateText(begin + half);
  const qreal room = width() - metrics.horizontalAdvance(first) - metrics.horizontalAdvance(now);
  if (line.points.size() == 2 || metrics.horizontalAdvance(middle) * 3 > room) return;
  write(painter, below, Qt::AlignHCenter | Qt::AlignTop, middle);
}

}  // namespace spacemint
