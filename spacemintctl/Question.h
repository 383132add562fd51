#pragma once

#include <string>

namespace spacemint::ctl {

/// True if standard input and standard error are terminals.
bool canAsk();

/// Prints the question on standard error and waits for an answer; true only for "y", "Y" and "yes". Ignores
/// input that was typed before the question.
bool ask(const std::string& question);

}  // namespace spacemint::ctl
