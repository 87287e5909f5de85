#pragma once

#include <QString>
#include <QStringList>

/// The window classes of a program with this display name, if they differ from the name; empty for unknown names.
inline QStringList windowClassesOf(const QString& displayName) {
    static const struct {
        const char16_t *name, *classes;
    } table[] = {
        {u"Code", u"code;code-oss;vscodium"},
        {u"Code - Insiders", u"code-insiders"},
        {u"Visual Studio Code", u"code;code-oss;vscodium"},
        {u"Ghostty", u"com.mitchellh.ghostty"},
        {u"WezTerm", u"org.wezfurlong.wezterm"},
        {u"Warp", u"dev.warp.Warp"},
        {u"Zed", u"dev.zed.Zed"},
        {u"IntelliJ IDEA", u"jetbrains-idea;jetbrains-idea-ce"},
    };
    for (const auto& row : table) {
        if (displayName == row.name) return QString::fromUtf16(row.classes).split(u';');
    }
    return {};
}
