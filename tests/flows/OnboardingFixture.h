#pragma once

#include "flows/OnboardingFlowState.h"
#include "flows/OnboardingView.h"
#include "tests/fakes/Announcements.h"
#include "tests/fakes/FileViewer.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/LinkOpener.h"
#include "tests/helper/HelperFixture.h"

namespace vorli {

/// The first steps over a scripted registration service.
struct OnboardingFixture : HelperFixture {
  using Step = OnboardingFlowState::Step;
  using Preview = OnboardingFlowState::Preview;
  using Location = OnboardingFlowState::Location;
  using Case = InstallStatus::Case;

  // With `bundle` at this path, the program counts as installed on every system.
  OnboardingFixture() { bundle.path = bundle.home + "/Applications/Vorli"; }

  OnboardingViewNeeds needs(HostSystem system) {
    return {.scheduler = scheduler,
            .helperManager = *manager,
            .flowState = flow,
            .bundle = bundle,
            .announcements = announcements,
            .links = links,
            .fileViewer = fileViewer,
            .installPage = "",
            .requestNotificationAuthorization = [this] { ++authorizationRequests; },
            .system = system};
  }

  fakes::KeyValueStore defaults;
  fakes::Announcements announcements;
  fakes::LinkOpener links;
  fakes::FileViewer fileViewer;
  OnboardingFlowState flow{defaults};
  int authorizationRequests = 0;
};

}  // namespace vorli
