#pragma once

#include <QByteArray>
#include <QString>

/// What a file of groups, keys and values, in the form of desktop entries, says. Empty where the file or the key is
/// missing or damaged. Only away from the main thread.
QString keyFileValue(const QByteArray& path, const char* group, const char* key);
