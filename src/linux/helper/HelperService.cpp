#include "linux/helper/HelperService.h"

#include "linux/helper/HelperRegistration.h"

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <utility>

namespace vorli::linuxhost {

namespace {

// pkexec's own exit codes.
constexpr int exitCodeDismissed = 126;
constexpr int exitCodeNotAuthorised = 127;

// The text that pkexec writes when no agent runs. It is never translated.
constexpr const char* noAgent = "No authentication agent found";

struct Failure {
  std::string text;
  bool isMissingPrompt = false;
  bool isDeclined = false;
};

// Returns the failure of the installer, if it failed; `said` is its standard error.
std::optional<Failure> failureOf(const QProcess& installer, const QByteArray& said) {
  if (installer.error() == QProcess::FailedToStart)
    return Failure{.text = "pkexec, which asks for the password, is not installed.", .isMissingPrompt = true};
  if (installer.exitStatus() == QProcess::CrashExit) return Failure{"Its installation was cut off."};
  switch (installer.exitCode()) {
    case 0:
      return std::nullopt;
    case exitCodeDismissed:
      return Failure{.text = "The password was not given.", .isDeclined = true};
    case exitCodeNotAuthorised:
      if (said.contains(noAgent))
        return Failure{.text = "No password window could be opened.", .isMissingPrompt = true};
      return Failure{"Its installation was not authorised."};
    default:
      return Failure{"Its installation failed with code " + std::to_string(installer.exitCode()) + "."};
  }
}

using Approval = HelperRegistration::Approval;
using Outcome = HelperRegistration::Outcome;

// Returns the reason why a user who wants to give the approval cannot.
std::optional<std::string> obstacleOf(Approval approval) {
  switch (approval) {
    case Approval::masked:
      return "Its service is masked on this system. An administrator can unmask it.";
    case Approval::refused:
      return "The rules of this system do not allow it. Ask an administrator.";
    case Approval::nobodyToAsk:
      return "No password window could be opened. Start your desktop's authentication agent, or ask an "
             "administrator.";
    case Approval::granted:
    case Approval::declined:
    case Approval::notMissing:
      break;
  }
  return std::nullopt;
}

}  // namespace

HelperService::HelperService(Scheduler& scheduler, SystemBus& bus, std::shared_ptr<HelperNameWatch> watch,
                             HelperFiles files, ShowOwnPage showOwnPage)
    : scheduler_(scheduler),
      bus_(bus),
      watch_(std::move(watch)),
      files_(std::move(files)),
      registration_(HelperRegistration::on(bus, watch_, files_)),
      showOwnPage_(std::move(showOwnPage)) {
  const auto readAgain = onMainThread<bool>([this](bool) { read(); });
  bus_.run([registration = registration_, readAgain] {
    registration->setChangeHandler([readAgain] { readAgain(true); });
  });
  read();
}

HelperService::~HelperService() {
  if (installer_) installer_->disconnect();
}

template <typename Result>
std::function<void(Result)> HelperService::onMainThread(std::function<void(Result)> handler) {
  return [&scheduler = scheduler_, life = std::weak_ptr<Life>(life_),
          handler = std::move(handler)](Result result) {
    scheduler.post([life, handler, result] {
      if (life.lock()) handler(result);
    });
  };
}

int HelperService::status() {
  read();
  return effectiveStatus();
}

int HelperService::effectiveStatus() const {
  return isInstalling() ? HelperRegistration::requiresApproval : lastKnown_.status;
}

HelperService::Reading HelperService::effectiveReading() const {
  return {.status = effectiveStatus(), .isOtherBuild = lastKnown_.isOtherBuild};
}

void HelperService::readStatus(OnceReply<int> reply) {
  read([this, shared = std::make_shared<OnceReply<int>>(std::move(reply))] {
    std::move (*shared)(effectiveStatus());
  });
}

void HelperService::setChangeHandler(std::function<void()> handler) {
  changed_ = std::move(handler);
}

void HelperService::read(const std::function<void()>& whenTaken) {
  const auto take = onMainThread<Reading>([this, whenTaken](const Reading& reading) {
    lastKnown_ = reading;
    tellWhenChanged();
    if (whenTaken) whenTaken();
  });
  bus_.run([registration = registration_, files = files_, take] {
    // Compares the files there, so that the main thread never waits for the disk.
    registration->readStatus([files, take](int status) {
      take({.status = status, .isOtherBuild = files.bringsOtherThanInstalled()});
    });
  });
}

// A request reads the status itself, later than the last reading; the handlers of its answer need it. It is
// reported even if it is the same, because an error from before may be over.
void HelperService::takenFromRequest(int status) {
  lastKnown_.status = status;
  tell(effectiveReading());
}

void HelperService::tellWhenChanged() {
  const Reading now = effectiveReading();
  if (now != lastTold_) tell(now);
}

void HelperService::tell(const Reading& now) {
  lastTold_ = now;
  if (changed_) changed_();
}

std::expected<void, std::string> HelperService::registerDaemon(ports::AskedBy asker) {
  if (isInstalling()) return {};
  if (watch_->presence() == HelperNameWatch::Presence::noBus)
    return std::unexpected("The system bus cannot be reached.");
  const bool isRegistered = watch_->mayLeadToDaemon();
  if (isRegistered && !files_.bringsOtherThanInstalled()) return {};
  const auto script = files_.installer();
  if (!script) return std::unexpected("The background helper is not part of this installation.");
  if (asker == ports::AskedBy::program)
    return std::unexpected(isRegistered
                               ? "The background helper is of another build; \"Reinstall\" replaces it."
                               : "The background helper is not installed yet.");

  installer_ = std::make_unique<QProcess>();
  const auto ended = [this] { installerEnded(); };
  QObject::connect(installer_.get(), &QProcess::finished, ended);
  QObject::connect(installer_.get(), &QProcess::errorOccurred, ended);
  installer_->setProcessChannelMode(QProcess::ForwardedOutputChannel);
  // Without the option, a pkexec that finds no agent asks in the terminal from which the program was started.
  installer_->start(QStringLiteral("pkexec"),
                    {QStringLiteral("--disable-internal-agent"), QString::fromStdString(*script)});
  return {};
}

void HelperService::installerEnded() {
  if (!installer_) return;
  const QByteArray said = installer_->readAllStandardError();
  std::fwrite(said.constData(), 1, static_cast<std::size_t>(said.size()), stderr);
  const auto failure = failureOf(*installer_, said);
  installer_.release()->deleteLater();
  read();
  if (!failure) return;
  onMainThread<Failure>([this](const Failure& cause) {
    tellFailure(cause.text);
    // A daemon of another build that still works keeps every page from showing the failure by itself.
    const bool isHidden = lastKnown_ == Reading{.status = HelperRegistration::enabled, .isOtherBuild = true};
    if (isHidden && !cause.isDeclined) showOwnPage_(ports::AskedBy::user);
  })(*failure);
  if (failure->isMissingPrompt) tellOfMissingPrompt();
}

void HelperService::tellOfMissingPrompt() {
  onMainThread<bool>([this](bool) {
    if (noPrompt_) noPrompt_();
  })(true);
}

void HelperService::setNoPromptHandler(std::function<void()> handler) {
  noPrompt_ = std::move(handler);
}

void HelperService::setFailureHandler(std::function<void(std::string)> handler) {
  failed_ = std::move(handler);
}

void HelperService::unregisterDaemon(OnceReply<std::expected<void, std::string>> reply) {
  std::move(reply)({});
}

void HelperService::openSystemSettingsLoginItems(ports::AskedBy asker) {
  if (asker == ports::AskedBy::program) return showOwnPage_(asker);
  askUser(Wanted::approvalOfDaemon);
}

void HelperService::askForStartupItemConsent(OnceReply<std::expected<void, std::string>> reply) {
  askUser(Wanted::startupItemConsent,
          std::make_shared<OnceReply<std::expected<void, std::string>>>(std::move(reply)));
}

void HelperService::askUser(Wanted wanted, const ConsentReply& reply) {
  if (isInstalling() || std::exchange(isPrompting_, true)) return;  // the user is being asked already
  const auto answered = onMainThread<Outcome>([this, reply](const Outcome& outcome) {
    const Approval approval = outcome.approval;
    isPrompting_ = false;
    if (outcome.status) takenFromRequest(*outcome.status);
    if (approval == Approval::granted) read();
    const auto obstacle = obstacleOf(approval);
    if (obstacle && reply) return std::move(*reply)(std::unexpected(*obstacle));
    if (obstacle) tellFailure(*obstacle);
    if (approval == Approval::nobodyToAsk && noPrompt_) noPrompt_();
    if (reply) return std::move(*reply)({});
    if (obstacle || approval == Approval::notMissing) showOwnPage_(ports::AskedBy::user);
  });
  bus_.run([registration = registration_, answered, wanted] {
    if (wanted == Wanted::approvalOfDaemon) return registration->askForApproval(answered);
    registration->askForStartupItemConsent(answered);
  });
}

void HelperService::tellFailure(const std::string& text) {
  if (failed_) failed_(text);
}

void HelperService::startupItemConsent(OnceReply<ports::Consent> reply) {
  const auto shared = std::make_shared<OnceReply<ports::Consent>>(std::move(reply));
  const auto answered =
      onMainThread<ports::Consent>([shared](ports::Consent consent) { std::move (*shared)(consent); });
  bus_.run([registration = registration_, answered] { registration->readStartupItemConsent(answered); });
}

}  // namespace vorli::linuxhost
