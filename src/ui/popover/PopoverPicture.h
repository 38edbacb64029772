#pragma once

#include "ambient/AuroraField.h"
#include "base/Colour.h"
#include "popover/DottedReassuranceRing.h"
#include "ui/kit/WindowPalette.h"

#include <QList>
#include <QString>
#include <optional>
#include <vector>

namespace vorli::ui {

/// Progress of a control towards each state, from 0 to 1. A press may overshoot with its spring.
struct ControlPicture {
  double hover = 0.0;
  double press = 0.0;
  bool focused = false;
  bool scales = true;  // false where the user asked for less movement

  bool operator==(const ControlPicture&) const = default;
};

/// The ring and its content, without the light behind.
struct RingPicture {
  double progress = 0.0;
  Colour stateColour;
  double scale = 1.0;
  double lens = 0.45;   // presence of the glass; 1 when a press would start a polish
  double rested = 0.0;  // 1 while a polished ring rests under the outcome
  bool canPolish = false;
  bool labelReady = false;  // the label uses its heavier face
  ControlPicture button;
  double labelOpacity = 1.0;
  DottedReassuranceRing::Dots dots{};
  double dotsScale = 1.0;

  bool operator==(const RingPicture&) const = default;
};

/// A piece of the culprit sentence: plain text, or a name that can be pressed.
struct CulpritPiece {
  enum class Kind { text, name };
  Kind kind;
  QString text;

  bool operator==(const CulpritPiece&) const = default;
};

struct SentencePicture {
  QString text;
  double opacity = 1.0;
  bool operator==(const SentencePicture&) const = default;
};

struct CulpritPicture {
  QList<CulpritPiece> pieces;
  std::vector<ControlPicture> names;  // states of the names, in order
  double opacity = 1.0;
  bool operator==(const CulpritPicture&) const = default;
};

struct QuitPicture {
  QString name;
  ControlPicture cancel, quit;
  double opacity = 1.0;
  bool operator==(const QuitPicture&) const = default;
};

struct BannerPicture {
  QString text;
  double opacity = 1.0;
  bool operator==(const BannerPicture&) const = default;
};

struct LinkPicture {
  ControlPicture control;
  double opacity = 1.0;
  bool operator==(const LinkPicture&) const = default;
};

/// All texts, their controls, and the gear.
struct WordsPicture {
  double headlineTop = 175.0;
  SentencePicture sentence;
  std::optional<CulpritPicture> culprits;
  std::optional<QuitPicture> quit;
  std::optional<BannerPicture> banner;
  std::optional<LinkPicture> link;
  ControlPicture gear;

  bool operator==(const WordsPicture&) const = default;
};

/// Everything that the popover shows at one moment. Lengths are in points. The origin is the upper left
/// corner of the content, which is also the card's unless the card is unfolding.
struct PopoverPicture {
  Appearance appearance = Appearance::light;
  double cardTop = 0.0;
  double cardHeight = 240.0;
  double ringCentreY = 96.0;
  double calmIntensity = 0.0;
  double haloBreath = 0.5;
  AuroraPicture aurora;  // its opacities include the calm, as the model delivers them
  RingPicture ring;
  WordsPicture words;
  double contentOpacity = 1.0;  // of everything but the card and the aurora
};

}  // namespace vorli::ui
