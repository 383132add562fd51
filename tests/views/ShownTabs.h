#pragma once

#include "Spacemint/views/Ui.h"
#include "support/HomeFixture.h"
#include "support/ShownView.h"

#include <QTest>

namespace spacemint {

/// A tab of the panel, in a window that nobody sees, over the real model.
class ShownTabs : public support::HomeFixture {
 protected:
  using ShownView = support::ShownView;

  /// Starts the model over the stored scans and shows this tab.
  ShownView& show(Tab tab, QSize size = {460, 700}) {
    startModel();
    ui = std::make_unique<Ui>(
        UiHost{.model = *model, .desktop = desktop.desktop(), .home = home, .locale = "en_US", .quit = {}});
    model->setTab(tab);
    view =
        std::make_unique<ShownView>(QStringLiteral("PanelView.qml"),
                                    QVariantMap{{QStringLiteral("ui"), QVariant::fromValue(ui.get())}}, size);
    settle();
    return *view;
  }
  /// Lets the model and then the view come to rest.
  void settle() {
    desktop.settle();
    view->settle();
  }

  bool shows(const char* text) { return view->shows(QString::fromUtf8(text)); }
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

  /// The titles of the rows that are seen, from top to bottom.
  std::vector<std::string> rows() {
    std::vector<std::string> titles;
    for (const QQuickItem* row : view->find({}, "ItemRow")) {
      titles.push_back(row->property("title").toString().toStdString());
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
  /// Points at a row and presses the button that appears on it.
  void pressOnRow(const std::string& title, const char* help) {
    view->hover(row(title));
    click(help);
  }
  /// The list that fills the tab.
  QQuickItem* list() { return view->find({}, "RowList").value(0, view->root()); }
  double scrolled(QQuickItem* flickable) { return flickable->property("contentY").toDouble(); }

  /// The question that is asked: its title and what it is about.
  std::vector<std::string> asked() const {
    const auto& question = model->cleanups().confirmation();
    if (!question) return {};
    return {question->plan.title, question->plan.subject};
  }

  // The view goes first.
  std::unique_ptr<Ui> ui;
  std::unique_ptr<ShownView> view;
};

}  // namespace spacemint
