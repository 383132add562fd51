#pragma once

#include <QObject>
#include <QPointer>

#include <concepts>
#include <exception>
#include <utility>

namespace spacemint {

/// Ends a chain of continuations whose object was destroyed. Only the futures catch it.
struct NoLongerAlive final : std::exception {};

/// A function for `QFuture::then` that is called only if `context` still exists; otherwise the rest of the
/// chain is dropped. Do not give the context to `then` itself: Qt 6.4 aborts the process if that context is
/// destroyed.
template <class Function>
class WhileAlive {
 public:
  WhileAlive(QObject* context, Function function) : context_(context), function_(std::move(function)) {}

  template <class Argument>
  requires std::invocable<Function&, Argument>
  auto operator()(Argument&& argument) {
    if (!context_) throw NoLongerAlive{};
    return function_(std::forward<Argument>(argument));
  }

 private:
  QPointer<QObject> context_;
  Function function_;
};

template <class Function>
WhileAlive<Function> whileAlive(QObject* context, Function function) {
  return {context, std::move(function)};
}

}  // namespace spacemint
