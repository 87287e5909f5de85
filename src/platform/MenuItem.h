#pragma once

#include <QList>
#include <QString>
#include <functional>

/// One row of a menu.
struct MenuItem {
    QString title;                 ///< empty: a separator
    std::function<void()> action;  ///< none: opens the submenu, or cannot be chosen
    bool checked = false;
    QList<MenuItem> submenu;

    bool separator() const { return title.isEmpty(); }
};
