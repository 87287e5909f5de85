#pragma once

#include <QByteArray>
#include <QString>

/// A value from a file in the format of desktop entries. Empty if the file or the key is missing or malformed. Only
/// away from the main thread.
QString keyFileValue(const QByteArray& path, const char* group, const char* key);
