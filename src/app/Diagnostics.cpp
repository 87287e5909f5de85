#include "app/Diagnostics.h"

#include <cstdio>

#include "creature/Numbers.h"

void Diagnostics::write(const QString& line) {
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

QString formatRect(const QRectF& rect) {
    return formatNumbers({rect.x(), rect.y(), rect.width(), rect.height()});
}
