#include "insights/CulpritSentence.h"

#include "base/Assert.h"

namespace vorli {

CulpritSentence::CulpritSentence(const CulpritFormatter::CulpritData& data) {
  using enum Segment::Kind;
  const auto& names = data.names;
  VORLI_ASSERT(!names.empty());
  const std::string end = " " + data.verb + std::string(culpritSentenceEnd);
  if (names.size() == 1) {
    segments_ = {{app, names[0]}, {text, end}};
  } else if (names.size() == 2) {
    segments_ = {{app, names[0]}, {text, " and "}, {app, names[1]}, {text, end}};
  } else {
    std::vector<std::string> bold;
    bold.reserve(names.size());
    for (const auto& name : names) bold.push_back("**" + name + "**");
    segments_ = {{text, joinedAsList(bold) + end}};
  }
}

}  // namespace vorli
