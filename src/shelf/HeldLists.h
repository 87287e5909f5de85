#pragma once

#include <QList>
#include <QSet>
#include <QString>
#include <QUrl>

constexpr int kMaxItems = 12;
constexpr int kMaxBites = 8;

/// Two URLs of one file are equal in this form: "." and ".." and doubled slashes are resolved.
inline QString standardized(const QUrl& file) {
    return QString::fromUtf8(file.adjusted(QUrl::NormalizePathSegments | QUrl::StripTrailingSlash).toEncoded());
}

/// `older`, then what of `newer` has a new key, without the oldest beyond `max`. Adds to `fresh` how many were new.
template <class T, class Key>
QList<T> joined(const QList<T>& older, const QList<T>& newer, int max, const Key& keyOf, int* fresh = nullptr) {
    QSet<QString> known;
    QList<T> all;
    for (const QList<T>* list : {&older, &newer}) {
        for (const T& one : *list) {
            const QString key = keyOf(one);
            if (known.contains(key)) continue;
            known.insert(key);
            all.append(one);
            if (fresh && list == &newer) ++*fresh;
        }
    }
    if (all.size() > max) all.remove(0, all.size() - max);
    return all;
}
