#pragma once

#include <QByteArray>
#include <QColor>
#include <QHashFunctions>
#include <QImage>
#include <QPainterPath>
#include <QRectF>
#include <QString>
#include <type_traits>

/// All values that a picture depends on, as raw bytes: two keys are equal if and only if all their values are, in
/// order. If one cache holds several kinds of pictures, begin each key with the kind.
class PictureKey {
 public:
    /// Implicit, so that a braced list of values can be passed as a key.
    template <class... Values>
    PictureKey(const Values&... values) {
        bytes_.reserve(int((sizeof(Values) + ... + 0)));
        (add(values), ...);
    }

    template <class T>
    void add(const T& value) requires(std::is_arithmetic_v<T> || std::is_enum_v<T>) {
        bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    void add(const QColor& color) { add(quint64(color.rgba64())); }
    void add(const QPointF& point) { add(point.x()), add(point.y()); }
    void add(const QRectF& rect) { add(rect.topLeft()), add(rect.width()), add(rect.height()); }
    /// By identity, not content: QImage::cacheKey() changes when the image is modified.
    void add(const QImage& image) { add(image.cacheKey()); }
    void add(const QString& text) {
        add(text.size());
        bytes_.append(reinterpret_cast<const char*>(text.constData()), text.size() * qsizetype(sizeof(QChar)));
    }
    void add(const QPainterPath& path) {
        add(path.elementCount());
        for (int i = 0; i < path.elementCount(); ++i) {
            const QPainterPath::Element element = path.elementAt(i);
            add(element.type), add(QPointF(element));
        }
    }

    friend bool operator==(const PictureKey&, const PictureKey&) = default;
    friend size_t qHash(const PictureKey& key, size_t seed = 0) { return qHash(key.bytes_, seed); }

 private:
    QByteArray bytes_;
};
