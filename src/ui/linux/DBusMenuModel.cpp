#include "ui/linux/DBusMenuModel.h"

#include <algorithm>

namespace vorli::ui {
namespace {

using ports::MenuRow;

bool looksLike(const MenuRow& left, const MenuRow& right) {
  return left.kind == right.kind && left.title == right.title && left.keyEquivalent == right.keyEquivalent;
}

QVariantMap rootProperties() {
  return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
}

QVariantMap rowProperties(const MenuRow& row) {
  if (row.kind == MenuRow::Kind::separator) {
    return {{QStringLiteral("type"), QStringLiteral("separator")}, {QStringLiteral("visible"), true}};
  }
  auto label = QString::fromStdString(row.title);
  label.replace(QLatin1Char('_'), QLatin1String("__"));  // a single one marks an access key
  QVariantMap properties{{QStringLiteral("label"), label},
                         {QStringLiteral("enabled"), static_cast<bool>(row.action)},
                         {QStringLiteral("visible"), true}};
  if (!row.keyEquivalent.empty()) {
    const QList<QStringList> shortcut{{QStringLiteral("Control"), QString::fromStdString(row.keyEquivalent)}};
    properties.insert(QStringLiteral("shortcut"), QVariant::fromValue(shortcut));
  }
  return properties;
}

QVariantMap only(const QStringList& names, QVariantMap properties) {
  if (!names.isEmpty()) {
    properties.removeIf([&names](QVariantMap::iterator entry) { return !names.contains(entry.key()); });
  }
  return properties;
}

}  // namespace

bool DBusMenuModel::rebuild() {
  auto rows = provider_ ? provider_() : std::vector<MenuRow>{};
  const bool same =
      revision_ != 0 && std::equal(rows.begin(), rows.end(), rows_.begin(), rows_.end(), looksLike);
  if (!same) {
    firstId_ += static_cast<int>(rows_.size());
    ++revision_;
  }
  rows_ = std::move(rows);
  return !same;
}

std::optional<DBusMenuNode> DBusMenuModel::layout(int id, int depth, const QStringList& names) const {
  if (!contains(id)) return std::nullopt;
  DBusMenuNode node{id, properties(id, names), {}};
  if (id != rootId || depth == 0) return node;
  for (const int child : ids().mid(1)) node.children.push_back({child, properties(child, names), {}});
  return node;
}

QVariantMap DBusMenuModel::properties(int id, const QStringList& names) const {
  if (id == rootId) return only(names, rootProperties());
  const auto* row = rowOf(id);
  return row ? only(names, rowProperties(*row)) : QVariantMap{};
}

QList<int> DBusMenuModel::ids() const {
  QList<int> all{rootId};
  for (int row = 0; row < static_cast<int>(rows_.size()); ++row) all.push_back(firstId_ + row);
  return all;
}

std::function<void()> DBusMenuModel::actionOf(int id) const {
  const auto* row = rowOf(id);
  return row ? row->action : nullptr;
}

const MenuRow* DBusMenuModel::rowOf(int id) const {
  if (id < firstId_ || id - firstId_ >= static_cast<int>(rows_.size())) return nullptr;
  return &rows_[static_cast<std::size_t>(id - firstId_)];
}

}  // namespace vorli::ui
