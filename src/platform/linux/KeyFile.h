#pragma once

#include <QHash>
#include <QString>

/// What a file of groups, keys and values says, as desktops keep their settings: group, key, value. Of a key that
/// stands twice the first holds.
using KeyFile = QHash<QString, QHash<QString, QString>>;

KeyFile parseKeyFile(const QString& text);

/// Empty for a file that cannot be read. Only away from the main thread.
KeyFile readKeyFile(const QString& path);

/// The words of a value that is a list.
QStringList listed(const QString& value, QChar separator);
