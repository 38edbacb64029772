#include "flows/UpdaterDelegateCoordinator.h"

namespace vorli {

namespace {

constexpr int noUpdateFound = 1001;

}  // namespace

void UpdaterDelegateCoordinator::didFinishLoadingAppcast() {
  if (onFinishedLoadingAppcast) onFinishedLoadingAppcast();
}

// "No update found" is an answer, not a failure.
void UpdaterDelegateCoordinator::didAbortWithError(int code, std::string description) {
  if (code == noUpdateFound) return didFinishLoadingAppcast();
  if (onError) onError(description);
}

}  // namespace vorli
