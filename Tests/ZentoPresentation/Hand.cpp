#include "ZentoPresentation/Hand.h"

#include <QAccessible>
#include <QTest>

namespace zento {

bool isShown(QQuickItem* item)
{
    return item->isVisible() && item->isEnabled() && item->width() > 0 && item->height() > 0;
}

namespace {

QQuickItem* find(QQuickItem* root, const QString& name, bool takesKeys)
{
    for (QQuickItem* item : itemsBelow(root)) {
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(item);
        if (isShown(item) && (item->activeFocusOnTab() || !takesKeys) && accessible
            && accessible->text(QAccessible::Name) == name)
            return item;
    }
    return nullptr;
}

} // namespace

QQuickItem* named(QQuickItem* root, const QString& name)
{
    return find(root, name, /*takesKeys=*/true);
}

QQuickItem* labelled(QQuickItem* root, const QString& name)
{
    return find(root, name, /*takesKeys=*/false);
}

QPoint middle(QQuickItem* item)
{
    return item->mapToScene({item->width() / 2, item->height() / 2}).toPoint();
}

void click(Stage& stage, QQuickItem* item)
{
    QTest::mouseClick(&stage.window(), Qt::LeftButton, {}, middle(item));
    stage.settle();
}

void press(Stage& stage, int key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(&stage.window(), Qt::Key(key), modifiers);
    stage.settle();
}

void type(Stage& stage, const char* text)
{
    for (; *text != '\0'; ++text)
        QTest::keyClick(&stage.window(), *text);
}

} // namespace zento
