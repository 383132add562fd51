#include "Spacemint/shell/LayerShell.h"

#include "core/base/Log.h"

#include <QFileInfo>
#include <QLibraryInfo>
#include <QPainter>
#include <QQmlComponent>

namespace spacemint {

namespace {

// Not one of our QML files: the module that it imports is missing on many systems.
constexpr const char* source = R"(
import QtQml
import org.kde.layershell as LayerShell

QtObject {
    function put(window, edges, left, top, right, bottom, takesKeys) {
        const layer = window.LayerShell.Window;
        const Type = LayerShell.Window;
        layer.scope = "spacemint";
        layer.layer = Type.LayerTop;
        layer.keyboardInteractivity = takesKeys ? Type.KeyboardInteractivityOnDemand : Type.KeyboardInteractivityNone;
        layer.anchors = (edges & Qt.TopEdge ? Type.AnchorTop : 0) | (edges & Qt.LeftEdge ? Type.AnchorLeft : 0)
            | (edges & Qt.RightEdge ? Type.AnchorRight : 0) | (edges & Qt.BottomEdge ? Type.AnchorBottom : 0);
        layer.margins.left = left;
        layer.margins.top = top;
        layer.margins.right = right;
        layer.margins.bottom = bottom;
    }
}
)";

}  // namespace

bool LayerShell::isInstalled() {
  return QFileInfo::exists(QLibraryInfo::path(QLibraryInfo::QmlImportsPath) +
                           QStringLiteral("/org/kde/layershell/qmldir"));
}

LayerShell::LayerShell(QQmlEngine& engine) : engine_(engine) {}

LayerShell::~LayerShell() = default;

bool LayerShell::put(QWindow& window, const Place& place) {
  if (!module_) {
    QQmlComponent component{&engine_};
    component.setData(source, QUrl{});
    module_.reset(component.create());
    if (!module_) {
      log(LogLevel::info, "the panel cannot be placed: " + component.errorString().toStdString());
      return false;
    }
  }
  const QMargins& m = place.margins;
  return QMetaObject::invokeMethod(
      module_.get(), "put", Q_ARG(QVariant, QVariant::fromValue<QObject*>(&window)),
      Q_ARG(QVariant, static_cast<int>(place.edges)), Q_ARG(QVariant, m.left()), Q_ARG(QVariant, m.top()),
      Q_ARG(QVariant, m.right()), Q_ARG(QVariant, m.bottom()), Q_ARG(QVariant, place.takesKeys));
}

ClickCatcher::ClickCatcher() {
  QSurfaceFormat format = requestedFormat();
  format.setAlphaBufferSize(8);
  setFormat(format);
  setFlags(Qt::Tool | Qt::FramelessWindowHint);
}

void ClickCatcher::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter{this};
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(QRect{QPoint{}, size()}, Qt::transparent);
}

void ClickCatcher::mousePressEvent(QMouseEvent* /*event*/) {
  Q_EMIT clicked();
}

}  // namespace spacemint
