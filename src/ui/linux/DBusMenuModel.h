#pragma once

#include "ports/StatusItem.h"
#include "ui/linux/DBusMenuTypes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace vorli::ui {

/// The rows of the status item's menu as a panel sees them: numbered, and with a revision that rises when
/// they change. A number is never given to another row, so a late click on a row that is gone hits nothing.
class DBusMenuModel {
 public:
  using Provider = std::function<std::vector<ports::MenuRow>()>;
  static constexpr int rootId = 0;

  void setProvider(Provider provider) { provider_ = std::move(provider); }

  /// Asks for the rows of one opening. True when they look different from those before.
  bool rebuild();

  std::uint32_t revision() const { return revision_; }
  bool contains(int id) const { return id == rootId || rowOf(id); }

  /// The item and, `depth` levels down (negative: all), what is below it. An empty list of names asks for all
  /// properties.
  std::optional<DBusMenuNode> layout(int id, int depth, const QStringList& names) const;
  QVariantMap properties(int id, const QStringList& names) const;
  /// Every id, the root's first.
  QList<int> ids() const;

  /// What a click on the row does; empty for a separator, the root and unknown ids.
  std::function<void()> actionOf(int id) const;

 private:
  const ports::MenuRow* rowOf(int id) const;

  Provider provider_;
  std::vector<ports::MenuRow> rows_;
  int firstId_ = rootId + 1;
  std::uint32_t revision_ = 0;
};

}  // namespace vorli::ui
