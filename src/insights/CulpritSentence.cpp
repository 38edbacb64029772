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

std::vector<CulpritSentence::Segment> CulpritSentence::closedByHand(const std::string& name) {
  std::vector<Segment> segments{{Segment::Kind::text, name}};
  for (const char* word : {" has", " to", " be", " closed", " by", " hand", " on", " this", " desktop."}) {
    segments.push_back({Segment::Kind::text, word});
  }
  return segments;
}

std::string CulpritSentence::closedByHandText(const std::string& name) {
  std::string sentence;
  for (const auto& segment : closedByHand(name)) sentence += segment.text;
  return sentence;
}

}  // namespace vorli
