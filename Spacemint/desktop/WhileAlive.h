#pragma once

#include <QObject>
#include <QPointer>

#include <concepts>
#include <exception>
#include <utility>

namespace spacemint {

/// Ends a chain of continuations whose object is gone. Nobody catches it but the futures themselves.
struct NoLongerAlive final : std::exception {};

/// A function for `QFuture::then` that is called for as long as `context` is there; after that the rest of
/// the chain is dropped. Where a context is given to `then` itself, Qt 6.4 stops the process in that case.
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
