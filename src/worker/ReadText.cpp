#include "worker/ReadText.h"

Result<QString> readText(const QByteArray&) {
    return Failure{7, QStringLiteral("no text found")};
}
