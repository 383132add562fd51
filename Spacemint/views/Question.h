#pragma once

#include "Spacemint/views/ShownText.h"
#include "Spacemint/views/UiHost.h"

#include <QQmlEngine>
#include <QUuid>

namespace spacemint {

/// The confirmation that the person is asked for. Main thread only.
class Question : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(bool asked READ isAsked NOTIFY changed)
  /// The id of the question; empty while there is none.
  Q_PROPERTY(QString uuid READ uuid NOTIFY changed)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString subject READ subject NOTIFY changed)
  /// Usually a path; may be empty.
  Q_PROPERTY(QString detail READ detail NOTIFY changed)
  /// The name and the size of each of several items.
  Q_PROPERTY(QStringList items READ items NOTIFY changed)
  /// What will be lost besides; empty for nothing.
  Q_PROPERTY(QString warning READ warning NOTIFY changed)
  Q_PROPERTY(QString note READ note NOTIFY changed)
  Q_PROPERTY(QString actionTitle READ actionTitle NOTIFY changed)
 public:
  explicit Question(const UiHost& host);

  bool isAsked() const { return current().has_value(); }
  QString uuid() const { return isAsked() ? current()->id.toString() : QString{}; }
  QString title() const { return text(&CleanupPlan::title); }
  QString subject() const { return text(&CleanupPlan::subject); }
  QString detail() const;
  QStringList items() const;
  QString warning() const { return text(&CleanupPlan::warning); }
  QString note() const;
  QString actionTitle() const { return text(&CleanupPlan::button); }

  /// Confirms the question with this id. Does nothing if another question is shown by now.
  Q_INVOKABLE void perform(const QString& uuid) const {
    host_.model.cleanups().confirm(QUuid::fromString(uuid));
  }
  Q_INVOKABLE void dismiss() const { host_.model.cleanups().dismiss(); }

 Q_SIGNALS:
  void changed();

 private:
  const std::optional<Confirmation>& current() const { return host_.model.cleanups().confirmation(); }
  QString text(std::string CleanupPlan::*field) const;

  const UiHost& host_;
};

}  // namespace spacemint
