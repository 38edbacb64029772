#include "linux/HelperService.h"

#include "linux/HelperRegistration.h"

#include <QProcess>
#include <QStringList>
#include <optional>
#include <utility>

namespace vorli::linuxhost {

namespace {

constexpr int requiresApproval = 2;

// pkexec's own.
constexpr int exitCodeDismissed = 126;
constexpr int exitCodeNotAuthorised = 127;

std::optional<std::string> failureOf(const QProcess& installer) {
  if (installer.error() == QProcess::FailedToStart)
    return "pkexec, which asks for the password, is not installed.";
  if (installer.exitStatus() == QProcess::CrashExit) return "Its installation was cut off.";
  switch (installer.exitCode()) {
    case 0:
      return std::nullopt;
    case exitCodeDismissed:
      return "The password was not given.";
    case exitCodeNotAuthorised:
      return "Its installation was not authorised.";
    default:
      return "Its installation failed with code " + std::to_string(installer.exitCode()) + ".";
  }
}

}  // namespace

HelperService::HelperService(Scheduler& scheduler, SystemBus& bus, std::shared_ptr<HelperNameWatch> watch,
                             const std::string& programFolder, std::function<void()> showOwnPage)
    : scheduler_(scheduler),
      bus_(bus),
      watch_(std::move(watch)),
      files_(programFolder),
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
  return isInstalling() ? requiresApproval : lastKnown_;
}

void HelperService::readStatus(OnceReply<int> reply) {
  // A reading under way may have passed by what the caller wants to know.
  (isReading_ ? waitingForNext_ : waiting_).push_back(std::move(reply));
  read();
}

void HelperService::setChangeHandler(std::function<void()> handler) {
  changed_ = std::move(handler);
}

void HelperService::read() {
  if (isReading_) {
    readsAgain_ = true;
    return;
  }
  isReading_ = true;
  bus_.run([registration = registration_, taken = onMainThread<int>([this](int status) { taken(status); })] {
    registration->readStatus(taken);
  });
}

void HelperService::taken(int status) {
  isReading_ = false;
  lastKnown_ = status;
  tellWhenChanged();
  for (auto& reply : std::exchange(waiting_, {})) std::move(reply)(effectiveStatus());
  if (!std::exchange(readsAgain_, false)) return;
  waiting_ = std::exchange(waitingForNext_, {});
  read();
}

void HelperService::tellWhenChanged() {
  if (std::exchange(lastTold_, effectiveStatus()) != effectiveStatus() && changed_) changed_();
}

std::expected<void, std::string> HelperService::registerDaemon(ports::AskedBy asker) {
  if (watch_->mayLeadToDaemon() || isInstalling()) return {};
  const auto script = files_.installer();
  if (!script) return std::unexpected("The background helper is not part of this installation.");
  if (asker == ports::AskedBy::program) return std::unexpected("The background helper is not installed yet.");

  installer_ = std::make_unique<QProcess>();
  const auto ended = [this] { installerEnded(); };
  QObject::connect(installer_.get(), &QProcess::finished, ended);
  QObject::connect(installer_.get(), &QProcess::errorOccurred, ended);
  installer_->setProcessChannelMode(QProcess::ForwardedChannels);
  installer_->start(QStringLiteral("pkexec"), {QString::fromStdString(*script)});
  return {};
}

void HelperService::installerEnded() {
  if (!installer_) return;
  const auto failure = failureOf(*installer_);
  installer_.release()->deleteLater();
  read();
  if (failure)
    onMainThread<std::string>([this](const std::string& text) {
      if (failed_) failed_(text);
    })(*failure);
}

void HelperService::setFailureHandler(std::function<void(std::string)> handler) {
  failed_ = std::move(handler);
}

void HelperService::unregisterDaemon(OnceReply<std::expected<void, std::string>> reply) {
  std::move(reply)({});
}

void HelperService::openSystemSettingsLoginItems(ports::AskedBy asker) {
  if (asker == ports::AskedBy::program) return showOwnPage_();
  if (isInstalling() || std::exchange(isPrompting_, true)) return;  // the user is being asked already
  const auto answered =
      onMainThread<HelperRegistration::Approval>([this](HelperRegistration::Approval approval) {
        isPrompting_ = false;
        if (approval == HelperRegistration::Approval::notToBeHadHere) showOwnPage_();
        if (approval == HelperRegistration::Approval::granted) read();
      });
  bus_.run([registration = registration_, answered] { registration->askForApproval(answered); });
}

void HelperService::startupItemConsent(OnceReply<ports::Consent> reply) {
  const auto shared = std::make_shared<OnceReply<ports::Consent>>(std::move(reply));
  const auto answered =
      onMainThread<ports::Consent>([shared](ports::Consent consent) { std::move (*shared)(consent); });
  bus_.run([registration = registration_, answered] { registration->readStartupItemConsent(answered); });
}

}  // namespace vorli::linuxhost
