#include "ui/ApplicationHost.h"

#include <QApplication>
#include <QMessageBox>

namespace vorli::ui {
void ApplicationHost::activateIgnoringOtherApps() {}
void ApplicationHost::showInfoAlert(const std::string& m, const std::string& i) {
  auto* box = new QMessageBox(QMessageBox::Information, QString::fromStdString(m), QString::fromStdString(i));
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}
void ApplicationHost::openAboutPanel() { showInfoAlert("Vorli", "About"); }
void ApplicationHost::terminate() {
  if (!mayTerminate_ || mayTerminate_()) QApplication::quit();
}
void ApplicationHost::replyToTermination() { QApplication::quit(); }
}  // namespace vorli::ui
