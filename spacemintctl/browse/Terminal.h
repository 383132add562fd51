#pragma once

#include "core/base/Error.h"
#include "spacemintctl/browse/Screen.h"

#include <expected>
#include <memory>
#include <optional>
#include <string>

namespace spacemint::ctl {

/// The terminal as a full screen with keys and mouse. The destructor gives the terminal back as it was; so
/// does a signal that ends the process because of a fault of the program (SIGSEGV, SIGABRT and the like). One
/// object at a time; one thread.
class Terminal {
 public:
  /// Whether standard output is a terminal, and standard input too unless `keysFromTerminal`.
  static bool canBeUsed(bool keysFromTerminal);

  /// Takes the terminal. `keysFromTerminal` reads the keys from the process's terminal, because standard
  /// input is something else. Fails if the terminal's kind is not known. Text is UTF-8, as `setUpTranslation`
  /// sets it.
  static std::expected<std::unique_ptr<Terminal>, Error> open(bool keysFromTerminal);

  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal();

  ScreenSize size() const;
  /// Sends what differs from the last screen.
  void draw(const Screen& screen);
  /// The next key; absent if none is waiting. Never blocks. A change of the size is `Key::Kind::other`.
  std::optional<Key> key();
  /// True if the terminal has gone.
  bool hasGone() const { return hasGone_; }
  /// Lends the terminal to the user's shell in a folder, until the shell ends.
  void openShell(const std::string& folder);
  /// The descriptor that becomes readable when a key arrives.
  int keys() const;

 private:
  struct Parts;
  explicit Terminal(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
  bool hasGone_ = false;
};

}  // namespace spacemint::ctl
