#include "platform/wrapped_check_box.h"

#include <gtest/gtest.h>

#include <QTest>

namespace tarnwick::platform {

namespace {

TEST(WrappedCheckBox, GrowsWhereItIsNarrowAndTakesClicksAnywhere) {
  CWrappedCheckBox box;
  box.setText("A text of many words that stands on one line only where there is room enough for it");
  EXPECT_GE(box.heightForWidth(200), 2 * box.heightForWidth(2000));
  box.resize(200, box.heightForWidth(200));
  box.show();
  QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, QPoint(195, box.height() - 3));
  EXPECT_TRUE(box.isChecked());
}

}  // namespace

}  // namespace tarnwick::platform
