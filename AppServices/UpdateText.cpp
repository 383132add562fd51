#include "AppServices/UpdateText.h"

namespace spacemint {

namespace {

std::string problemText(UpdateProblem problem) {
  switch (problem) {
    case UpdateProblem::noKey:
      return "This copy cannot check whether an update is genuine.";
    case UpdateProblem::feedUnreachable:
      return "The list of updates could not be reached.";
    case UpdateProblem::feedUnreadable:
      return "The list of updates could not be read.";
    case UpdateProblem::downloadFailed:
      return "The update could not be downloaded. Try again later.";
    case UpdateProblem::cannotStore:
      return "The update could not be stored.";
    case UpdateProblem::feedRefused:
    case UpdateProblem::fileRefused:
    case UpdateProblem::signatureRefused:
    case UpdateProblem::packageRefused:
      return "The update is not genuine and was not installed.";
  }
  return {};
}

std::string resultText(const UpdateState& state, const std::string& appName) {
  switch (state.result) {
    case UpdateState::Result::none:
      return {};
    case UpdateState::Result::upToDate:
      return state.isAsked ? appName + " is up to date." : "";
    case UpdateState::Result::found:
      return "Version " + state.version + " is available.";
    case UpdateState::Result::ready:
      return "Version " + state.version + " is ready to install.";
    case UpdateState::Result::failed:
      return state.isAsked ? problemText(state.problem) : "";
  }
  return {};
}

}  // namespace

std::string updateStatus(const UpdateState& state, const std::string& appName) {
  switch (state.phase) {
    case UpdateState::Phase::idle:
      return resultText(state, appName);
    case UpdateState::Phase::checking:
      return state.isAsked ? "Checking for updates…" : "";
    case UpdateState::Phase::downloading:
      return "Downloading version " + state.version + "…";
    case UpdateState::Phase::verifying:
      return "Checking version " + state.version + "…";
  }
  return {};
}

}  // namespace spacemint
