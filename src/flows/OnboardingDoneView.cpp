#include "flows/OnboardingDoneView.h"

#include "base/Animation.h"

namespace vorli {

namespace {

constexpr double allTicksSeconds = OnboardingDoneView::tickCount * OnboardingDoneView::tickSeconds;
constexpr CubicBezier easeOut{0.22, 0.9, 0.28, 1.0};
constexpr double popResponse = 0.34;
constexpr double popDamping = 0.72;

}  // namespace

OnboardingDoneView::OnboardingDoneView(Scheduler& scheduler, OnboardingFlowState& flowState,
                                       HostSystem system)
    : ticks(scheduler, 0.0),
      checkDrawn(scheduler, 0.0),
      checkPop(scheduler, smallestCheck),
      flowState_(flowState),
      texts_(ofSystem<OnboardingTexts>(system)) {}

void OnboardingDoneView::appear() {
  withAnimation(Animation::linear(allTicksSeconds), [this] { ticks = tickCount; });
  withAnimation(Animation::timingCurve(easeOut, checkSeconds).delayed(allTicksSeconds),
                [this] { checkDrawn = 1.0; });
  withAnimation(Animation::spring(popResponse, popDamping).delayed(allTicksSeconds),
                [this] { checkPop = 1.0; });
}

}  // namespace vorli
