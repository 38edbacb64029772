#include "formats/PropertyListBuilder.h"

#include "base/Assert.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace vorli::formats {

PropertyListBuilder::Index PropertyListBuilder::add(Kind kind, std::uint64_t bits) {
  list_.nodes_.push_back({.kind = kind, .bits = bits});
  return static_cast<Index>(list_.nodes_.size() - 1);
}

PropertyListBuilder::Index PropertyListBuilder::addReal(double value) {
  return add(Kind::real, std::bit_cast<std::uint64_t>(value));
}

PropertyListBuilder::Index PropertyListBuilder::addDate(Date date) {
  return add(Kind::date, std::bit_cast<std::uint64_t>(date.secondsSince1970));
}

PropertyListBuilder::Index PropertyListBuilder::addBytes(Kind kind, std::string_view bytes) {
  const auto index = add(kind, list_.bytes_.size());
  list_.nodes_.back().count = static_cast<std::uint32_t>(bytes.size());
  list_.bytes_ += bytes;
  return index;
}

bool PropertyListBuilder::open(Kind kind) {
  if (open_.size() == deepest) return false;
  open_.push_back({kind, pending_.size()});
  return true;
}

std::span<const PropertyListBuilder::Index> PropertyListBuilder::contents() const {
  return std::span(pending_).subspan(open_.back().start);
}

PropertyListBuilder::Index PropertyListBuilder::close() {
  const auto kind = open_.back().kind;
  const auto held = contents();
  VORLI_ASSERT(kind != Kind::dictionary || held.size() % 2 == 0);
  const auto index = add(kind, list_.references_.size());
  list_.nodes_.back().count =
      static_cast<std::uint32_t>(kind == Kind::dictionary ? held.size() / 2 : held.size());
  list_.references_.insert(list_.references_.end(), held.begin(), held.end());
  discard();
  return index;
}

void PropertyListBuilder::discard() {
  pending_.resize(open_.back().start);
  open_.pop_back();
}

// Returns the rank of each value among the sorted keys, from 1. Equal texts have the same rank; a value that
// is not a text used as a key has 0. Texts are compared only here, once for the whole list: dictionaries that
// share their keys would otherwise compare the same long texts again and again.
std::vector<std::uint32_t> PropertyListBuilder::rankKeys() const {
  std::vector<std::uint32_t> ranks(list_.nodes_.size());
  std::vector<Index> keys;
  for (const auto& node : list_.nodes_) {
    if (node.kind != Kind::dictionary) continue;
    for (std::size_t entry = 0; entry < node.count; ++entry) {
      const Index key = list_.references_[node.bits + 2 * entry];
      if (ranks[key] == 0 && list_.nodes_[key].kind == Kind::text) {
        ranks[key] = 1;
        keys.push_back(key);
      }
    }
  }
  const auto textOf = [this](Index key) { return *value(key).text(); };
  std::ranges::sort(keys, {}, textOf);
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (i == 0 || textOf(keys[i]) != textOf(keys[i - 1])) ++rank;
    ranks[keys[i]] = rank;
  }
  return ranks;
}

// Leaves out entries whose key is not a text, and those that another entry with the same key overrides.
void PropertyListBuilder::sortEntries(PropertyList::Node& dictionary,
                                      const std::vector<std::uint32_t>& ranks) {
  struct Entry {
    std::uint32_t rank;
    std::size_t order;  // the lowest counts among equal keys
    Index key, value;
  };
  const auto references = std::span(list_.references_).subspan(dictionary.bits, 2 * dictionary.count);
  std::vector<Entry> entries;
  entries.reserve(dictionary.count);
  for (std::size_t i = 0; i < references.size(); i += 2) {
    if (ranks[references[i]] != 0) {
      const auto order = repeated_ == Repeated::firstCounts ? i : references.size() - i;
      entries.push_back({ranks[references[i]], order, references[i], references[i + 1]});
    }
  }
  std::ranges::sort(entries, {}, [](const Entry& entry) { return std::pair(entry.rank, entry.order); });
  const auto overridden = std::ranges::unique(entries, {}, &Entry::rank);
  entries.erase(overridden.begin(), overridden.end());

  dictionary.count = static_cast<std::uint32_t>(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    references[2 * i] = entries[i].key;
    references[2 * i + 1] = entries[i].value;
  }
}

PropertyList PropertyListBuilder::finish(Index root) {
  VORLI_ASSERT(open_.empty());
  const auto ranks = rankKeys();
  for (auto& node : list_.nodes_) {
    if (node.kind == Kind::dictionary) sortEntries(node, ranks);
  }
  list_.root_ = root;
  return std::move(list_);
}

}  // namespace vorli::formats
