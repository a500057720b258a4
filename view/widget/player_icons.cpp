#include "view/widget/player_icons.h"

#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPolygonF>

namespace tarnwick::view {

namespace {

/// A triangle that points to the right of `left`, or with `width` below 0 to the left; all in parts of the icon.
QPolygonF Triangle(double left, double width) {
  return {{left, 0.2}, {left + width, 0.5}, {left, 0.8}};
}

void Paint(QPainter& painter, PlayerSign sign) {
  switch (sign) {
    case PlayerSign::Play:
      painter.drawPolygon(Triangle(0.25, 0.55));
      break;
    case PlayerSign::Pause:
      painter.drawRect(QRectF(0.25, 0.2, 0.18, 0.6));
      painter.drawRect(QRectF(0.57, 0.2, 0.18, 0.6));
      break;
    case PlayerSign::Back:
      painter.drawPolygon(Triangle(0.52, -0.4));
      painter.drawPolygon(Triangle(0.9, -0.4));
      break;
    case PlayerSign::Forward:
      painter.drawPolygon(Triangle(0.1, 0.4));
      painter.drawPolygon(Triangle(0.48, 0.4));
      break;
  }
}

}  // namespace

QIcon PlayerIcon(PlayerSign sign, const QPalette& palette) {
  QIcon icon;
  for (const auto& [mode, group] :
       {std::pair(QIcon::Normal, QPalette::Active), {QIcon::Disabled, QPalette::Disabled}}) {
    for (const int side : {16, 32, 64}) {
      QPixmap picture(side, side);
      picture.fill(Qt::transparent);
      QPainter painter(&picture);
      painter.setRenderHint(QPainter::Antialiasing);
      painter.setPen(Qt::NoPen);
      painter.setBrush(palette.color(group, QPalette::ButtonText));
      painter.scale(side, side);
      Paint(painter, sign);
      painter.end();
      icon.addPixmap(picture, mode);
    }
  }
  return icon;
}

}  // namespace tarnwick::view
