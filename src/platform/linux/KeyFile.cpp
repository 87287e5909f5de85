#include "platform/linux/KeyFile.h"

#include <QFile>
#include <QStringList>

KeyFile parseKeyFile(const QString& text) {
    KeyFile file;
    QString group;
    for (const QStringView line : QStringView(text).split(u'\n')) {
        const QStringView trimmed = line.trimmed();
        if (trimmed.startsWith(u'[') && trimmed.endsWith(u']')) {
            group = trimmed.mid(1).chopped(1).toString();
            continue;
        }
        const qsizetype equals = trimmed.indexOf(u'=');
        if (trimmed.startsWith(u'#') || equals < 0) continue;
        const QString key = trimmed.left(equals).trimmed().toString();
        auto& keys = file[group];
        if (!keys.contains(key)) keys.insert(key, trimmed.mid(equals + 1).trimmed().toString());
    }
    return file;
}

KeyFile readKeyFile(const QString& path) {
    constexpr qint64 longest = 4 << 20;
    QFile file(path);
    if (!file.open(QFile::ReadOnly)) return {};
    return parseKeyFile(QString::fromUtf8(file.read(longest)));
}

QStringList listed(const QString& value, QChar separator) {
    QStringList words;
    for (const QString& word : value.split(separator, Qt::SkipEmptyParts)) words.append(word.trimmed());
    return words;
}
