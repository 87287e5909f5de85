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
        if (item.isSeparator()) {
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
    // Colours what the style does not draw: the scroll arrows of a menu that is taller than the screen.
    menu.setPalette(QPalette(gray(0.2)));
    menu.setAttribute(Qt::WA_TranslucentBackground, translucent);
    for (const MenuItem& item : items) {
        if (item.isSeparator()) {
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
    style->setParent(menu);  // after the submenus, so that it is deleted after them
    menu->popup(position);
}

void closePopUp() {
    // Innermost submenu first.
    while (QWidget* open = QApplication::activePopupWidget()) open->close();
}
