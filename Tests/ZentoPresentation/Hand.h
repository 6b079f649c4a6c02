#pragma once

#include "ZentoPresentation/Stage.h"

#include <QPoint>
#include <QQuickItem>
#include <QString>

namespace zento {

/// Whether an item can be seen and used.
bool isShown(QQuickItem* item);

/// The control of a name that the Tab key stops at; null for none.
QQuickItem* named(QQuickItem* root, const QString& name);

/// The item that is seen under a name, whether it takes the keys or not; null for none.
QQuickItem* labelled(QQuickItem* root, const QString& name);

QPoint middle(QQuickItem* item); // in its window

/// What a hand does to a stage. A click and a key are followed until all is quiet.
void click(Stage& stage, QQuickItem* item);
void press(Stage& stage, int key, Qt::KeyboardModifiers modifiers = {});
void type(Stage& stage, const char* text);

} // namespace zento
