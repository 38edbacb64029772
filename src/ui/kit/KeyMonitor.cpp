#include "ui/kit/KeyMonitor.h"

#include <QChar>
#include <QCoreApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QObject>
#include <QString>
#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <utility>

namespace vorli::ui {

namespace {

/// A key that is identified by its code, not by a character.
struct NamedKey {
  int key;
  std::uint16_t code;
};

constexpr std::array namedKeys{
    NamedKey{Qt::Key_Escape, 53},    NamedKey{Qt::Key_Return, 36},  NamedKey{Qt::Key_Enter, 36},
    NamedKey{Qt::Key_Tab, 48},       NamedKey{Qt::Key_Backtab, 48}, NamedKey{Qt::Key_Space, 49},
    NamedKey{Qt::Key_Backspace, 51}, NamedKey{Qt::Key_Delete, 117}, NamedKey{Qt::Key_Home, 115},
    NamedKey{Qt::Key_End, 119},      NamedKey{Qt::Key_PageUp, 116}, NamedKey{Qt::Key_PageDown, 121},
    NamedKey{Qt::Key_Left, 123},     NamedKey{Qt::Key_Right, 124},  NamedKey{Qt::Key_Down, 125},
    NamedKey{Qt::Key_Up, 126},
};
constexpr std::uint16_t anyOther = 0xFFFF;

std::uint64_t flagsOf(Qt::KeyboardModifiers modifiers) {
  std::uint64_t flags = 0;
  if (modifiers & Qt::ShiftModifier) flags |= 0x20000;
  if (modifiers & Qt::ControlModifier) flags |= 0x40000;
  if (modifiers & Qt::AltModifier) flags |= 0x80000;
  if (modifiers & Qt::MetaModifier) flags |= 0x100000;
  return flags;
}

// Takes the character from the key, because with Control held the text of the event is a control character.
QString charactersOf(const QKeyEvent& event) {
  const int key = event.key();
  const bool isCharacter = key > Qt::Key_Space && key < Qt::Key_Escape;
  return isCharacter ? QString::fromUcs4(std::array{static_cast<char32_t>(key)}.data(), 1) : QString();
}

ports::KeyDown keyDownOf(const QKeyEvent& event) {
  const auto* const named = std::ranges::find(namedKeys, event.key(), &NamedKey::key);
  const QString characters = charactersOf(event);
  return {.keyCode = named == namedKeys.end() ? anyOther : named->code,
          .modifierFlags = flagsOf(event.modifiers()),
          .charactersIgnoringModifiers = characters.toStdString(),
          .beginsWithLetterOrNumber =
              !characters.isEmpty() && QChar::isLetterOrNumber(characters.toUcs4().front())};
}

class Filter final : public QObject {
 public:
  explicit Filter(std::function<void(const ports::KeyDown&)> handler) : handler_(std::move(handler)) {
    QCoreApplication::instance()->installEventFilter(this);
  }

  bool eventFilter(QObject*, QEvent* event) override {
    // Qt sends this event before the press; accepting it keeps the key from triggering a shortcut.
    if (event->type() == QEvent::ShortcutOverride) {
      event->accept();
      return true;
    }
    if (event->type() != QEvent::KeyPress) return false;
    const auto handler = handler_;  // a copy: the handler may end the subscription
    handler(keyDownOf(static_cast<const QKeyEvent&>(*event)));
    return true;
  }

 private:
  const std::function<void(const ports::KeyDown&)> handler_;
};

}  // namespace

Subscription KeyMonitor::addLocalKeyDownMonitor(std::function<void(const ports::KeyDown&)> handler) {
  auto filter = std::make_unique<Filter>(std::move(handler));
  // Deleted later, because the subscription may end inside the filter's own call. The filter receives nothing
  // from here on.
  return Subscription([filter = std::move(filter)]() mutable {
    QCoreApplication::instance()->removeEventFilter(filter.get());
    filter.release()->deleteLater();
  });
}

}  // namespace vorli::ui
