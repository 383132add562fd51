#include "Spacemint/shell/Interface.h"

#include "Spacemint/views/ItemText.h"
#include "ui_kit/Theme.h"
#include "ui_kit/UiKit.h"

#include <QGuiApplication>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QQmlComponent>

namespace spacemint {

namespace {

class RefusingManager final : public QNetworkAccessManager {
 public:
  using QNetworkAccessManager::QNetworkAccessManager;

 protected:
  // A scheme that nobody knows: the reply fails without any traffic.
  QNetworkReply* createRequest(Operation operation, const QNetworkRequest& /*request*/,
                               QIODevice* data) override {
    return QNetworkAccessManager::createRequest(operation, QNetworkRequest{QUrl{QStringLiteral("refused:")}},
                                                data);
  }
};

// The object that QML sees. C++ cannot look it up by its name before Qt 6.5, so a QML object returns it.
ItemText* itemText(QQmlEngine& engine) {
  QQmlComponent component{&engine};
  component.setData("import QtQml; import Spacemint.Views; QtObject { property QtObject text: ItemText }",
                    {});
  const std::unique_ptr<QObject> holder{component.create()};
  return holder ? holder->property("text").value<ItemText*>() : nullptr;
}

}  // namespace

QNetworkAccessManager* NoNetworkForQml::create(QObject* parent) {
  return new RefusingManager{parent};
}

Interface::Interface(InterfaceHost host) : host_(std::move(host)), ui_(host_.ui) {
  engine_.setNetworkAccessManagerFactory(&noNetwork_);
  UiKit::install(engine_);
  host_.ui.desktop.opener.findFileManager([this](const std::string& name) {
    if (ItemText* text = itemText(engine_)) text->setFileManager(name);
  });
  followAppearance();
  connect(&host_.ui.desktop.appearance, &Appearance::changed, this, &Interface::followAppearance);
  qGuiApp->installEventFilter(this);
}

Interface::~Interface() = default;

DropdownPanel& Interface::panel() {
  if (!panel_) {
    panel_ = std::make_unique<DropdownPanel>(engine_, rootProperties());
    Q_EMIT panelMade(*panel_);
  }
  return *panel_;
}

MainWindow& Interface::window() {
  if (!window_) {
    restoreView();
    window_ = std::make_unique<MainWindow>(engine_, rootProperties(), host_.defaults);
    connect(window_.get(), &QWindow::visibleChanged, this, [this](bool isShown) {
      if (!isShown) keepView();
    });
    Q_EMIT windowMade(*window_);
  }
  return *window_;
}

void Interface::restoreView() {
  const WindowMemory memory = storedMemory(host_.defaults).value_or(WindowMemory{});
  ui_.explorer()->setColouring(memory.colouring);
  ui_.explorer()->setListWidth(memory.listWidth);
}

void Interface::keepView() {
  const AppModel& model = host_.ui.model;
  keepMemory({.tab = model.tab(),
              .folder = model.folderPath(),
              .colouring = ui_.explorer()->chosenColouring(),
              .listWidth = static_cast<int>(ui_.explorer()->listWidth())},
             host_.defaults);
}

QVariantMap Interface::rootProperties() {
  return {{QStringLiteral("ui"), QVariant::fromValue(&ui_)},
          {QStringLiteral("services"), QVariant::fromValue(&host_.services)},
          {QStringLiteral("productName"), QString::fromStdString(host_.services.name())},
          {QStringLiteral("productVersion"), QString::fromStdString(host_.services.version())},
          {QStringLiteral("keyHelp"), host_.keyHelp}};
}

// Qt reports a change of the desktop's font to the application object only.
bool Interface::eventFilter(QObject* /*object*/, QEvent* event) {
  if (event->type() == QEvent::ApplicationFontChange) followAppearance();
  return false;
}

void Interface::followAppearance() {
  Theme& theme = UiKit::theme(engine_);
  theme.setDark(host_.ui.desktop.appearance.isDark());
  theme.setReducedMotion(host_.ui.desktop.appearance.reducedMotion());
  theme.setTextScale(Theme::textScaleOf(QGuiApplication::font()));
}

}  // namespace spacemint
