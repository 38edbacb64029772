#pragma once

#include "ports/StatusItem.h"
#include "ui/linux/DBusMenuTypes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace vorli::ui {

/// The rows of the status item's menu as a panel sees them: numbered, with a revision that increases when
/// they change. Numbers are never reused, so a late click on a removed row is ignored.
class DBusMenuModel {
 public:
  using Provider = std::function<std::vector<ports::MenuRow>()>;
  static constexpr int rootId = 0;

  void setProvider(Provider provider) { provider_ = std::move(provider); }

  /// Asks the provider for the rows of one opening. Returns whether they look different from the previous
  /// ones.
  bool rebuild();

  std::uint32_t revision() const { return revision_; }
  bool contains(int id) const { return id == rootId || rowOf(id); }

  /// The item with `depth` levels of its descendants (negative: all). An empty list of names selects all
  /// properties. Empty for an unknown id.
  std::optional<DBusMenuNode> layout(int id, int depth, const QStringList& names) const;
  QVariantMap properties(int id, const QStringList& names) const;
  /// Every id, the root's first.
  QList<int> ids() const;

  /// Action of a click on the row; empty for a separator, the root and unknown ids.
  std::function<void()> actionOf(int id) const;

 private:
  const ports::MenuRow* rowOf(int id) const;

  Provider provider_;
  std::vector<ports::MenuRow> rows_;
  int firstId_ = rootId + 1;
  std::uint32_t revision_ = 0;
};

}  // namespace vorli::ui
