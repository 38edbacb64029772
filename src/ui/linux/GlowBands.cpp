#include "ui/linux/GlowBands.h"

#include "linux/X11Reply.h"
#include "ui/linux/QtX11.h"

#include <QPainter>
#include <QRasterWindow>
#include <algorithm>
#include <cstdint>
#include <span>

namespace vorli::ui {
namespace {

constexpr std::array edges{ScreenEdge::top, ScreenEdge::bottom, ScreenEdge::left, ScreenEdge::right};

// Sends a changed opacity at once; Qt leaves it in its buffer, which may take seconds to fill.
void flush() {
  if (auto* connection = qtConnection()) xcb_flush(connection);
}

// Returns whether the compositor applies the opacity of X11 windows. In a Wayland session it is also the
// window manager and announces this. In other sessions it may be a separate program, which announces nothing
// but does so.
bool appliesOpacity() {
  auto* connection = qtConnection();
  if (!connection || !qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) return true;
  constexpr std::uint32_t mostAtoms = 1024;
  const auto cookie = xcb_get_property(connection, 0, rootWindow(connection),
                                       atomNamed(connection, "_NET_SUPPORTED"), XCB_ATOM_ATOM, 0, mostAtoms);
  const linuxhost::X11Reply<xcb_get_property_reply_t> reply(
      xcb_get_property_reply(connection, cookie, nullptr));
  if (!reply) return true;
  const std::span supported(static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get())),
                            reply->value_len);
  const auto opacity = atomNamed(connection, "_NET_WM_WINDOW_OPACITY");
  return std::ranges::find(supported, opacity) != supported.end();
}

}  // namespace

class GlowBands::Band final : public QRasterWindow {
 public:
  explicit Band(ScreenEdge edge) : edge_(edge) {
    QSurfaceFormat format = requestedFormat();
    format.setAlphaBufferSize(8);
    setFormat(format);
    setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
             Qt::WindowDoesNotAcceptFocus | Qt::WindowStaysOnTopHint | Qt::BypassWindowManagerHint);
  }

  void setColour(const QColor& colour) {
    if (colour == colour_) return;
    colour_ = colour;
    update();
  }
  ScreenEdge edge() const { return edge_; }

 private:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    paintGlowBand(painter, edge_, QRect(QPoint(), size()), colour_);
  }

  const ScreenEdge edge_;
  QColor colour_;
};

GlowBands::GlowBands(const QRect& screen, int depth) : depth_(depth), paintsOpacity_(!appliesOpacity()) {
  for (std::size_t i = 0; i < edges.size(); ++i) bands_[i] = std::make_unique<Band>(edges[i]);
  setScreen(screen);
}

GlowBands::~GlowBands() {
  for (auto& band : bands_) band.reset();
  flush();
}

void GlowBands::setScreen(const QRect& screen) {
  for (auto& band : bands_) band->setGeometry(glowBandGeometry(band->edge(), screen, depth_));
}

void GlowBands::show(const QColor& colour, int level) {
  QColor painted = colour;
  if (paintsOpacity_) painted.setAlpha(level);
  for (auto& band : bands_) band->setColour(painted);
  if (level == level_) return;
  level_ = level;
  for (auto& band : bands_) {
    if (!paintsOpacity_) band->setOpacity(level / fullLevel);
    if (!band->isVisible()) band->show();
  }
  flush();
}

void GlowBands::raise(std::uint32_t windowAbove) {
  auto* connection = qtConnection();
  if (!connection) return;
  for (auto& band : bands_) {
    const auto window = static_cast<xcb_window_t>(band->winId());
    if (windowAbove == 0) {
      const std::uint32_t above = XCB_STACK_MODE_ABOVE;
      xcb_configure_window(connection, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    } else {
      const std::array<std::uint32_t, 2> below{windowAbove, XCB_STACK_MODE_BELOW};
      xcb_configure_window(connection, window, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE,
                           below.data());
    }
  }
  xcb_flush(connection);
}

}  // namespace vorli::ui
