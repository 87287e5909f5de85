#pragma once

#include <QHash>
#include <QSet>
#include <QStringList>
#include <QVariant>

#include "platform/FileReferences.h"
#include "platform/Preferences.h"
#include "platform/Sounds.h"
#include "platform/Workspace.h"

/// Preferences that live as long as the object; `writes` counts what was set.
class MemoryPreferences : public Preferences {
 public:
    bool boolean(const QString& key) const override { return get<bool>(key).value_or(false); }
    std::optional<double> number(const QString& key) const override { return get<double>(key); }
    std::optional<QString> text(const QString& key) const override { return get<QString>(key); }
    std::optional<QByteArray> data(const QString& key) const override { return get<QByteArray>(key); }
    std::optional<QList<QByteArray>> dataList(const QString& key) const override { return get<QList<QByteArray>>(key); }

    void setBoolean(const QString& key, bool value) override { set(key, value); }
    void setNumber(const QString& key, double value) override { set(key, value); }
    void setText(const QString& key, const QString& value) override { set(key, value); }
    void setData(const QString& key, const QByteArray& value) override { set(key, value); }
    void setDataList(const QString& key, const QList<QByteArray>& value) override {
        set(key, QVariant::fromValue(value));
    }

    QHash<QString, QVariant> values;
    int writes = 0;

 private:
    template <class T>
    std::optional<T> get(const QString& key) const {
        const auto found = values.find(key);
        if (found == values.end() || found->metaType() != QMetaType::fromType<T>()) return {};
        return found->value<T>();
    }
    void set(const QString& key, const QVariant& value) {
        values[key] = value;
        ++writes;
    }
};

/// References are paths; files named in `missing` do not exist.
class MemoryFiles : public FileReferences {
 public:
    std::optional<QByteArray> bookmark(const QUrl& file) const override {
        if (!file.isLocalFile()) return {};
        return file.toLocalFile().toUtf8();
    }
    std::optional<QUrl> resolve(const QByteArray& bookmark) const override {
        const QString path = QString::fromUtf8(bookmark);
        if (!path.startsWith(u'/') || missing.contains(path)) return {};
        return QUrl::fromLocalFile(path);
    }

    QSet<QString> missing;
};

class MemorySounds : public Sounds {
 public:
    void play(const QString& name) override { played.append(name); }
    QStringList played;
};

class MemoryWorkspace : public Workspace {
 public:
    void start() override { started = true; }
    void activateOrOpenTerminal(const QString& displayName) override { activated.append(displayName); }
    void open(const QUrl& url) override { opened.append(url); }
    void reveal(const QUrl& file) override { revealed.append(file); }

    bool started = false;
    QStringList activated;
    QList<QUrl> opened, revealed;
};
