#pragma once

#include "Spacemint/views/Ui.h"
#include "support/ModelFixture.h"
#include "support/ShownView.h"

#include <QTest>

namespace spacemint {

/// The interface over the real model, in a window without a screen.
class ShownTabs : public support::ModelFixture {
 protected:
  using ShownView = support::ShownView;

  /// Starts the model with the stored scans and shows this tab of the panel.
  ShownView& show(Tab tab = Tab::overview, QSize size = {460, 700}) {
    startModel();
    ui = std::make_unique<Ui>(UiHost{.model = *model,
                                     .desktop = desktop.desktop(),
                                     .home = home,
                                     .locale = locale,
                                     .quit = [this] { hasQuit = true; },
                                     .loginItem = &desktop.loginItem,
                                     .usage = usage.get(),
                                     .updates = updates.get()});
    model->setTab(tab);
    view =
        std::make_unique<ShownView>(QStringLiteral("PanelView.qml"),
                                    QVariantMap{{QStringLiteral("ui"), QVariant::fromValue(ui.get())}}, size);
    settle();
    return *view;
  }

  /// Waits until the model and then the view have nothing left to do.
  void settle() {
    desktop.settle();
    view->settle();
  }

  /// Shows a message, as the model does after a clean-up.
  void tell(std::string text, std::optional<MessageAction> action = {}) {
    model->messages().show(std::move(text), std::move(action));
    settle();
  }

  bool shows(const char* text) { return view->shows(QString::fromUtf8(text)); }
  QQuickItem* get(const char* name) { return view->get(QString::fromUtf8(name)); }
  QQuickItem* button(const char* name) { return view->get(QString::fromUtf8(name), "QQuickAbstractButton"); }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    view->press(key, modifiers);
    settle();
  }
  void click(QQuickItem* item, Qt::MouseButton which = Qt::LeftButton) {
    view->click(item, which);
    settle();
  }
  void click(const char* name) { click(button(name)); }

  /// The title of a row. A no-break space looks like a space.
  static std::string rowTitle(const QQuickItem& row) {
    return row.property("title").toString().replace(QChar::Nbsp, u' ').toStdString();
  }
  /// The titles of the visible rows, from top to bottom.
  std::vector<std::string> rows() {
    std::vector<std::string> titles;
    for (const QQuickItem* row : view->find({}, "ItemRow")) {
      titles.push_back(rowTitle(*row));
    }
    return titles;
  }
  QQuickItem* row(const std::string& title) {
    for (QQuickItem* row : view->find({}, "ItemRow")) {
      if (row->property("title").toString() == QString::fromStdString(title)) return row;
    }
    ADD_FAILURE() << title << " is no row";
    return view->root();
  }
  std::string subtitle(const std::string& title) {
    return row(title)->property("subtitle").toString().toStdString();
  }
  /// Points at a row and presses the button that appears in it.
  void pressOnRow(const std::string& title, const char* help) {
    view->hover(row(title));
    click(help);
  }
  /// The list that fills the tab.
  QQuickItem* list() { return view->find({}, "RowList").value(0, view->root()); }
  double scrolled(QQuickItem* flickable) { return flickable->property("contentY").toDouble(); }

  bool isAsked() const { return model->cleanups().confirmation().has_value(); }
  /// The title and the subject of the question that is shown.
  std::vector<std::string> asked() const {
    const auto& question = model->cleanups().confirmation();
    if (!question) return {};
    return {question->plan.title, question->plan.subject};
  }

  WebClient web{"Spacemint", {}};
  std::unique_ptr<Usage> usage;
  std::unique_ptr<Updates> updates;
  bool hasQuit = false;
  // The view is destroyed first.
  std::unique_ptr<Ui> ui;
  std::unique_ptr<ShownView> view;
};

}  // namespace spacemint
