#pragma once

#include "Spacemint/desktop/linux/ActivationToken.h"
#include "Spacemint/desktop/linux/StatusNotifierTypes.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QPoint>

#include <functional>
#include <utility>

namespace spacemint {

/// The D-Bus interface org.kde.StatusNotifierItem. Properties that we do not use are exported empty, because
/// hosts read them. Main thread only.
class StatusNotifierAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
  Q_PROPERTY(QString Category READ category)
  Q_PROPERTY(QString Id READ id)
  Q_PROPERTY(QString Status READ status)
  Q_PROPERTY(int WindowId READ zero)
  Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
  Q_PROPERTY(QDBusObjectPath Menu READ menu)
  Q_PROPERTY(QString Title READ title)
  Q_PROPERTY(spacemint::StatusToolTip ToolTip READ toolTip)
  Q_PROPERTY(QString IconName READ iconName)
  Q_PROPERTY(spacemint::StatusPixmaps IconPixmap READ icons)
  Q_PROPERTY(QString IconThemePath READ none)
  Q_PROPERTY(QString IconAccessibleDesc READ accessibleName)
  Q_PROPERTY(QString OverlayIconName READ none)
  Q_PROPERTY(spacemint::StatusPixmaps OverlayIconPixmap READ noIcons)
  Q_PROPERTY(QString AttentionIconName READ none)
  Q_PROPERTY(spacemint::StatusPixmaps AttentionIconPixmap READ noIcons)
  Q_PROPERTY(QString AttentionMovieName READ none)
  Q_PROPERTY(QString AttentionAccessibleDesc READ none)
  Q_PROPERTY(QString XAyatanaLabel READ label)
  Q_PROPERTY(QString XAyatanaLabelGuide READ none)
  Q_PROPERTY(uint XAyatanaOrderingIndex READ noOrder)
 public:
  /// The properties that change.
  struct Content {
    QString title;
    StatusToolTip toolTip;
    QString iconName;
    StatusPixmaps icons;
    QString label;
  };
  using Clicked = std::function<void(QPoint pixel)>;

  /// Adds the interface to `object`. The caller registers the object with a bus.
  StatusNotifierAdaptor(QObject* object, QDBusObjectPath menu, Clicked clicked)
      : QDBusAbstractAdaptor(object),
        menu_(std::move(menu)),
        clicked_(std::move(clicked)) {}

  void setContent(Content content) {
    content_ = std::move(content);
    Q_EMIT NewIcon();
    Q_EMIT NewTitle();
    Q_EMIT NewToolTip();
    Q_EMIT XAyatanaNewLabel(content_.label, none());
  }

  QString category() const { return QStringLiteral("SystemServices"); }
  QString id() const { return QStringLiteral("app.spacemint.Spacemint"); }
  QString status() const { return QStringLiteral("Active"); }
  bool itemIsMenu() const { return false; }
  QDBusObjectPath menu() const { return menu_; }
  QString title() const { return content_.title; }
  StatusToolTip toolTip() const { return content_.toolTip; }
  QString iconName() const { return content_.iconName; }
  StatusPixmaps icons() const { return content_.icons; }
  QString label() const { return content_.label; }
  QString accessibleName() const { return QStringLiteral("Spacemint"); }
  QString none() const { return {}; }
  StatusPixmaps noIcons() const { return {}; }
  int zero() const { return 0; }
  uint noOrder() const { return 0; }

 public Q_SLOTS:
  void Activate(int x, int y) { clicked_({x, y}); }
  void SecondaryActivate(int x, int y) { clicked_({x, y}); }
  // Plasma calls this right before Activate.
  void ProvideXdgActivationToken(const QString& token) { ActivationToken::use(token); }
  // The host draws the menu itself.
  void ContextMenu(int /*x*/, int /*y*/) {}
  void Scroll(int /*delta*/, const QString& /*orientation*/) {}

 Q_SIGNALS:
  void NewTitle();
  void NewIcon();
  void NewToolTip();
  void XAyatanaNewLabel(const QString& label, const QString& guide);

 private:
  QDBusObjectPath menu_;
  Clicked clicked_;
  Content content_;
};

}  // namespace spacemint
