#include "ui/linux/IconThemeName.h"

#include "formats/XSettings.h"
#include "ui/kit/QtText.h"

namespace vorli::ui {

std::string iconThemeName(const ManagerSelections& selections) {
  const auto published = formats::xSettingsText(
      bytesOf(selections.published(ManagerSelections::Selection::settings)), "Net/IconThemeName");
  return published && !published->empty() ? *published : GtkPreference::ofThisUser().iconTheme.toStdString();
}

}  // namespace vorli::ui
