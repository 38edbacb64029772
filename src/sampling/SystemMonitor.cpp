#include "sampling/SystemMonitor.h"

#include "sampling/RingProgress.h"

#include <array>
#include <utility>

namespace vorli {

namespace {

constexpr std::size_t topListLength = 5;

}  // namespace

double periodSeconds(MonitorCadence cadence) {
  return cadence == MonitorCadence::active ? 2.0 : 15.0;
}

SystemMonitor::SystemMonitor(const SystemMonitorPorts& ports, AppSettings& settings,
                             IdleAppTracker& idleTracker)
    : ports_(ports),
      processEnumerator_(ports.processes, ports.workspace, ports.cpu, ports.calendar),
      idleTracker_(idleTracker),
      orphanDetector_(ports.workspace, ApplicationPaths(ports.bundle.homeDirectory())),
      leakyDetector_(ports.workspace),
      settings_(settings),
      tasks_(ports.scheduler) {}

SystemMonitor::~SystemMonitor() {
  ports_.background.abandon();
}

void SystemMonitor::refresh() {
  ports_.background.finish();
  processEnumerator_.prepare();
  lookAtProcesses();
  publish();
}

// Runs on the main thread, or in the background while nothing else uses the enumerator.
void SystemMonitor::lookAtProcesses() {
  const double start = ports_.scheduler.now();
  processes_ = &processEnumerator_.readProcesses();
  enumerationSeconds_ = ports_.scheduler.now() - start;
}

void SystemMonitor::publish() {
  const auto& processes = *processes_;
  auto memoryHogs = largest(processes, &ProcessSnapshot::residentBytes);
  auto cpuHogs = largest(processes, &ProcessSnapshot::cpuFraction);
  const MemorySnapshot before = memory;
  memory = sampleMemory(ports_.memory, ports_.calendar);
  setPreviousMemory(before);
  cpu = cpuStats_.sample(ports_.cpu, ports_.calendar);
  thermal = sampleThermal();
  topMemoryHogs = std::move(memoryHogs);
  topCPUHogs = std::move(cpuHogs);
  idleApps = idleTracker_.idleApps(settings_.idleThresholdMinutes());
  orphanHelpers = orphanDetector_.detect(processes);
  leakyApps = leakyDetector_.detect(processes);
  lastUpdate = ports_.calendar.now();
  updateRingProgress();
}

template <typename Field>
std::vector<ProcessSnapshot> SystemMonitor::largest(const std::vector<ProcessSnapshot>& rows,
                                                    Field ProcessSnapshot::*field) {
  std::vector<ProcessSnapshot> top;
  top.reserve(topListLength);
  for (const auto index : largestRows_.find(rows, topListLength, field)) top.push_back(rows[index]);
  return top;
}

// An empty snapshot, whether the first or from a failed read, cannot be the base of rates.
void SystemMonitor::setPreviousMemory(const MemorySnapshot& before) {
  if (before.isEmpty()) {
    previousMemorySnapshot_.reset();
  } else {
    previousMemorySnapshot_ = before;
  }
}

ThermalSnapshot SystemMonitor::sampleThermal() {
  ThermalSnapshot snapshot;
  snapshot.thermalState = thermalState(ports_.thermal.readThermal());
  snapshot.lowPowerMode = ports_.thermal.isLowPowerModeEnabled();
  snapshot.powerSource = powerSource(ports_.power.readSupplies());
  snapshot.capturedAt = ports_.calendar.now();
  return snapshot;
}

void SystemMonitor::updateRingProgress() {
  const double target = targetRingProgress();
  if (!hasSampledOnce_) {
    ringProgress = target;
    hasSampledOnce_ = true;
  } else {
    ringProgress = smoothedRingProgress(ringProgress, target);
  }
}

double SystemMonitor::targetRingProgress() const {
  std::array<double, 3> load{};
  ports_.cpu.readLoadAverages(load);
  return ringProgressTarget({.memory = memory,
                             .previous = previousMemorySnapshot_,
                             .load = load[0],
                             .activeProcessorCount = ports_.cpu.activeProcessorCount(),
                             .cpuUsage = cpu->usage,
                             .thermalState = thermal->thermalState});
}

void SystemMonitor::setCadence(MonitorCadence cadence) {
  if (cadence_ == cadence) return;
  cadence_ = cadence;
  restartTimer();
}

void SystemMonitor::restartTimer() {
  stopTimer();
  timer_ = std::make_unique<RepeatingTimer>(ports_.scheduler, periodSeconds(cadence_),
                                            [this] { tasks_.spawn(tick()); });
}

Task<> SystemMonitor::tick() {
  if (ports_.background.isUnderWay()) co_return;  // like a firing that the loop was too busy for
  if (enumerationSeconds_ <= longestOnMainThread) {
    refresh();
  } else {
    refreshInBackground();
  }
}

void SystemMonitor::refreshInBackground() {
  processEnumerator_.prepare();
  ports_.background.start([this] { lookAtProcesses(); }, [this] { publish(); });
}

}  // namespace vorli
