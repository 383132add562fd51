// The card as a person meets it: it comes, it is read, its buttons are clicked, it goes.

#include "AppServices/Notices.h"
#include "services/ServicesFixture.h"
#include "ui_kit/Theme.h"
#include "ui_kit/UiKit.h"

#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickView>
#include <QtTest/QTest>

#include <cstdlib>

Q_IMPORT_QML_PLUGIN(Spacemint_ServicesPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_UiKitPlugin)

namespace spacemint {
namespace {

class NoticeHostTest : public ServicesTest {
 protected:
  NoticeHostTest() {
    serve("/spacemint.json",
          {.body = R"({"messages": [{"id": "a", "title": "A title", "body": "<b>Not</b> markup.",)"
                   R"("link": {"title": "More", "url": "https://spacemint.example/a"}}]})"});
    UiKit::install(*view.engine());
    UiKit::theme(*view.engine()).setReducedMotion(true);
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.resize(420, 320);
    view.setInitialProperties({{QStringLiteral("notices"), QVariant::fromValue(&notices)}});
    view.setSource(QUrl{QStringLiteral("qrc:/qt/qml/Spacemint/Services/NoticeHost.qml")});
    view.show();
  }

  QQuickItem* item(const char* name) const {
    return view.rootObject()->findChild<QQuickItem*>(QLatin1String{name});
  }
  bool isCardThere() const { return item("noticeCard")->isVisible(); }
  void click(const char* name) {
    // A layout places its items when they are next drawn.
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    view.grabWindow();
    const QQuickItem* target = item(name);
    ASSERT_TRUE(target && target->isVisible()) << name;
    const QPointF middle = target->mapToScene(QPointF{target->width() / 2, target->height() / 2});
    QTest::mouseClick(&view, Qt::LeftButton, {}, middle.toPoint());
  }
  /// Keeps a picture of the window where somebody wants one.
  void picture(const char* name) {
    if (const char* folder = std::getenv("SPACEMINT_PICTURES")) {
      view.grabWindow().save(QLatin1String{folder} + QLatin1Char{'/'} + QLatin1String{name});
    }
  }

  std::vector<std::string> opened;
  AppInfo info{.name = "Spacemint", .version = "1.2", .slug = "spacemint", .site = server.address()};
  Usage usage{
      {.info = info, .defaults = defaults, .web = web, .today = [this] { return day; }, .systemVersion = ""}};
  Notices notices{{.info = info,
                   .defaults = defaults,
                   .web = web,
                   .usage = usage,
                   .today = [this] { return day; },
                   .openUrl = [this](const std::string& url) { opened.push_back(url); }}};
  QQuickView view;
};

TEST_F(NoticeHostTest, theQuestionIsAnsweredByAClick) {
  ASSERT_EQ(view.status(), QQuickView::Ready);
  EXPECT_FALSE(isCardThere());
  notices.start();
  ASSERT_TRUE(support::waitUntil([&] { return isCardThere(); }));
  view.grabWindow();
  const QRectF card = item("noticeCard")->mapRectToScene(item("noticeCard")->boundingRect());
  EXPECT_EQ(card, QRectF(20, 300 - card.height(), 380, card.height()));
  picture("question-light.png");
  UiKit::theme(*view.engine()).setDark(true);
  picture("question-dark.png");
  click("secondary");
  EXPECT_EQ(usage.isAllowed(), false);
}

TEST_F(NoticeHostTest, aMessageIsFollowedOrClosed) {
  for (const char* button : {"primary", "close"}) {
    defaults.set(UsageConsent::shareKey, false);
    Notices again{{.info = info,
                   .defaults = defaults,
                   .web = web,
                   .usage = usage,
                   .today = [this] { return day; },
                   .openUrl = [this](const std::string& url) { opened.push_back(url); }}};
    view.rootObject()->setProperty("notices", QVariant::fromValue(&again));
    again.start();
    ASSERT_TRUE(support::waitUntil([&] { return isCardThere(); })) << button;
    EXPECT_FALSE(item("secondary")->isVisible());
    picture("message.png");
    click(button);
    EXPECT_FALSE(again.isShowing()) << button;
    EXPECT_TRUE(support::waitUntil([&] { return !isCardThere(); })) << button;
    view.rootObject()->setProperty("notices", QVariant::fromValue<Notices*>(nullptr));
    defaults.remove(Notices::seenKey);
  }
  EXPECT_THAT(opened, testing::ElementsAre("https://spacemint.example/a"));
}

}  // namespace
}  // namespace spacemint

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_QUICK_BACKEND", "software");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  const QGuiApplication application(argc, argv);
  // A warning of QML is a fault.
  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg) ADD_FAILURE() << text.toStdString();
  });
  return RUN_ALL_TESTS();
}
