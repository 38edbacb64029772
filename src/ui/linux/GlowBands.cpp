#include "ui/linux/GlowBands.h"

#include "ui/linux/QtX11.h"

#include <QPainter>
#include <QRasterWindow>
#include <cstdint>

namespace vorli::ui {
namespace {

constexpr std::array edges{ScreenEdge::top, ScreenEdge::bottom, ScreenEdge::left, ScreenEdge::right};
constexpr double fullLevel = 255.0;

// Qt leaves a changed opacity in its buffer, which may take seconds to fill.
void flush() {
  if (auto* connection = qtConnection()) xcb_flush(connection);
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

GlowBands::GlowBands(const QRect& screen, int depth) : depth_(depth) {
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
  for (auto& band : bands_) band->setColour(colour);
  if (level == level_) return;
  level_ = level;
  for (auto& band : bands_) {
    band->setOpacity(level / fullLevel);
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
