#include "platform/linux/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>

void QtPasteboard::setString(const QString& text) {
    QGuiApplication::clipboard()->setText(text);
}
