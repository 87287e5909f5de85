#include "worker/Chew.h"

Result<QByteArray> chew(const QByteArray&, ChewMode, const QByteArray&) {
    return Failure{1, QStringLiteral("couldn't open the image")};
}
