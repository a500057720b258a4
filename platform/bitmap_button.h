#pragma once

#include <QIcon>
#include <QString>

class QAbstractButton;

namespace tarnwick::platform {

/// The drawing with the name `stem` ("IDB_OPEN", "add"); an empty icon if there is none.
QIcon IconOf(const QString& stem);

/// Turns a button whose caption is a stem ("IDB_OPEN") into one that shows the drawing of that name; behind a bar the
/// caption has the words to stand beside it ("IDB_SAVE|&Save"). The form gives the
/// button's tooltip; without one it gets the stem's usual one. The tooltip is also the accessible name unless the form
/// gives another. The stem stays in the property "stem".
void LoadCaptionBitmaps(QAbstractButton& button);

/// Does LoadCaptionBitmaps for every button below `parent` whose caption begins with "IDB_".
void LoadAllCaptionBitmaps(QWidget& parent);

}  // namespace tarnwick::platform
