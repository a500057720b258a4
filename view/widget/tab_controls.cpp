#include "view/widget/tab_controls.h"

#include <QComboBox>
#include <QLocale>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>

#include "platform/text.h"

namespace tarnwick::view {

QSlider* MakeSlider(const QString& name, int minimum, int maximum) {
  auto* slider = new QSlider(Qt::Horizontal);
  slider->setRange(minimum, maximum);
  slider->setPageStep(std::max((maximum - minimum) / 20, 1));
  slider->setAccessibleName(name);
  return slider;
}

void SetQuietly(QSlider& slider, int value) {
  const QSignalBlocker quiet(slider);
  slider.setValue(value);
}

void SetQuietly(QComboBox& box, int index) {
  const QSignalBlocker quiet(box);
  box.setCurrentIndex(index);
}

QScrollArea* Scrolled(QWidget* content) {
  auto* area = new QScrollArea;
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(content);
  return area;
}

void Narrow(QComboBox& box) {
  box.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  box.setMinimumContentsLength(8);
}

QString Number(float value) {
  return QLocale().toString(static_cast<double>(value), 'g', 4);
}

QString Named(const std::string& name, const QString& otherwise) {
  return name.empty() ? otherwise : platform::ToQt(name);
}

}  // namespace tarnwick::view
