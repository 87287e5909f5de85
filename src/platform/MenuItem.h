#pragma once

#include <QList>
#include <QString>
#include <functional>

/// One row of a menu.
struct MenuItem {
    QString title;                 ///< empty: a separator
    std::function<void()> action;  ///< none: opens the submenu, or is disabled
    bool checked = false;
    QList<MenuItem> submenu;

    bool isSeparator() const { return title.isEmpty(); }
};
