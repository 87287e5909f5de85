#pragma once

#include <QList>
#include <QSet>
#include <QString>
#include <QUrl>

constexpr int kMaxItems = 12;
constexpr int kMaxBites = 8;

/// A form in which different URLs of one file compare equal: ".", ".." and doubled slashes are resolved.
inline QString standardized(const QUrl& file) {
    return QString::fromUtf8(file.adjusted(QUrl::NormalizePathSegments | QUrl::StripTrailingSlash).toEncoded());
}

/// `older` followed by the elements of `newer` whose keys are new; drops the oldest beyond `max`. Adds the number of
/// new elements to `fresh`.
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
