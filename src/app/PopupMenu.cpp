#include "app/PopupMenu.h"

#include <QApplication>
#include <QMenu>
#include <QPalette>
#include <QStringList>

#include "app/MenuStyle.h"
#include "views/Colors.h"

QStringList describeMenu(const QList<MenuItem>& items) {
    QStringList lines;
    for (const MenuItem& item : items) {
        if (item.separator()) {
            lines.append(QStringLiteral("—— "));
            continue;
        }
        QString line = QStringLiteral("   ") + item.title;
        if (!item.submenu.isEmpty()) line += QStringLiteral("  ▸") + QString::number(item.submenu.size());
        lines.append(line);
    }
    return lines;
}

namespace {

void fill(QMenu& menu, const QList<MenuItem>& items, QStyle& style, bool translucent) {
    menu.setStyle(&style);
    // For what the style leaves to others: the arrows of a menu that is too long for the screen.
    menu.setPalette(QPalette(gray(0.2)));
    menu.setAttribute(Qt::WA_TranslucentBackground, translucent);
    for (const MenuItem& item : items) {
        if (item.separator()) {
            menu.addSeparator();
            continue;
        }
        // A single ampersand would be taken for a mnemonic.
        const QString title = QString(item.title).replace(u'&', QStringLiteral("&&"));
        if (!item.submenu.isEmpty()) {
            fill(*menu.addMenu(title), item.submenu, style, translucent);
            continue;
        }
        QAction* action = menu.addAction(title);
        action->setEnabled(bool(item.action));
        action->setCheckable(item.checked);
        action->setChecked(item.checked);
        if (item.action) QObject::connect(action, &QAction::triggered, action, item.action);
    }
}

}  // namespace

void popUp(const QList<MenuItem>& items, const QPoint& position, bool translucent) {
    closePopUp();
    auto* menu = new QMenu;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    auto* style = new MenuStyle(translucent);
    fill(*menu, items, *style, translucent);
    style->setParent(menu);  // after the submenus, which go first
    menu->popup(position);
}

void closePopUp() {
    // A submenu first, then the menu that it belongs to.
    while (QWidget* open = QApplication::activePopupWidget()) open->close();
}
