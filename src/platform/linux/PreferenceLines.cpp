#include "platform/linux/PreferenceLines.h"

#include <QLocale>
#include <algorithm>
#include <cctype>
#include <optional>

namespace {

constexpr qsizetype kMaxLine = 4 * 1024 * 1024;  // bytes
constexpr qsizetype kMaxElements = 1024;         // of a list
constexpr qsizetype kMaxKeys = 1000;
constexpr QByteArrayView kEquals = " = ";
constexpr QByteArrayView kOurs = "glimmet.";

/// Percent-encodes what would break a line or a list of words, and non-ASCII bytes.
QByteArray encoded(const QByteArray& bytes) {
    return bytes.toPercentEncoding(QByteArrayLiteral("{}[]\":,\\/_=()!?'*+;@&#<>|$"));
}

/// Absent when a percent sign is not followed by two hexadecimal digits.
std::optional<QByteArray> decoded(const QByteArray& text) {
    const auto isHex = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
    for (qsizetype i = text.indexOf('%'); i >= 0; i = text.indexOf('%', i + 1)) {
        if (i + 2 >= text.size() || !isHex(text[i + 1]) || !isHex(text[i + 2])) return {};
    }
    return QByteArray::fromPercentEncoding(text);
}

bool isPlain(QByteArrayView text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
}

/// `words` has a space before each element, which may be empty.
QVariant readList(const QByteArray& words) {
    if (words.count(' ') > kMaxElements) return {};
    QList<QByteArray> list;
    for (const QByteArray& word : words.split(' ').mid(1)) {
        const auto element = decoded(word);
        if (!element) return {};
        list.append(*element);
    }
    return QVariant::fromValue(list);
}

/// `rest` is all that follows the type: nothing, or a space and the value.
QVariant readValue(const QByteArray& type, const QByteArray& rest) {
    if (type == "list") return readList(rest);
    const QByteArray text = rest.mid(1);
    if (type == "bool") return text == "true" ? QVariant(true) : text == "false" ? QVariant(false) : QVariant();
    if (type == "number") {
        bool ok = false;
        const double number = text.toDouble(&ok);
        return ok ? QVariant(number) : QVariant();
    }
    const auto bytes = decoded(text);
    if (!bytes) return {};
    if (type == "data") return *bytes;
    return type == "text" ? QVariant(QString::fromUtf8(*bytes)) : QVariant();
}

QByteArrayView keyOf(QByteArrayView line) {
    const qsizetype equals = line.indexOf(kEquals);
    return equals > 0 && isPlain(line.first(equals)) ? line.first(equals) : QByteArrayView();
}

QVariant valueOf(QByteArrayView line) {
    if (line.size() > kMaxLine || !isPlain(line)) return {};
    const QByteArray typeAndValue = line.sliced(keyOf(line).size() + kEquals.size()).toByteArray();
    const qsizetype space = typeAndValue.indexOf(' ');
    const qsizetype length = space < 0 ? typeAndValue.size() : space;
    return readValue(typeAndValue.left(length), typeAndValue.mid(length));
}

/// Calls `take` with each complete line, and returns the rest after the last line end.
template <class Take>
QByteArrayView forEachLine(QByteArrayView contents, const Take& take) {
    for (;;) {
        const qsizetype end = contents.indexOf('\n');
        if (end < 0) return contents;
        take(contents.first(end));
        contents = contents.sliced(end + 1);
    }
}

}  // namespace

QByteArray preferenceLine(const QString& key, const QVariant& value) {
    QByteArray line = key.toLatin1() + kEquals.toByteArray();
    switch (value.typeId()) {
        case QMetaType::Bool:
            line += value.toBool() ? "bool true" : "bool false";
            break;
        case QMetaType::Double:
            line += "number " + QByteArray::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
            break;
        case QMetaType::QString:
            line += "text " + encoded(value.toString().toUtf8());
            break;
        case QMetaType::QByteArray:
            line += "data " + encoded(value.toByteArray());
            break;
        default:
            line += "list";
            for (const QByteArray& element : value.value<QList<QByteArray>>()) line += ' ' + encoded(element);
    }
    return line.size() > kMaxLine ? QByteArray() : line;
}

QHash<QString, QVariant> readPreferences(const QByteArray& contents) {
    QHash<QString, QVariant> values;
    // A last line without an end is ignored: it may have been truncated.
    forEachLine(contents, [&](QByteArrayView line) {
        if (!line.startsWith(kOurs)) return;
        const QString key = QString::fromLatin1(keyOf(line));
        if (key.isEmpty() || (values.size() >= kMaxKeys && !values.contains(key))) return;
        if (const QVariant value = valueOf(line); value.isValid()) values[key] = value;
    });
    return values;
}

QByteArray withLines(const QByteArray& contents, const std::vector<PreferenceLine>& lines) {
    std::vector<std::pair<QByteArray, bool>> placed;
    for (const PreferenceLine& line : lines) placed.emplace_back(line.key.toLatin1(), false);
    const auto find = [&](QByteArrayView line) {
        const QByteArrayView key = keyOf(line);
        return std::find_if(placed.begin(), placed.end(), [&](const auto& entry) { return key == entry.first; });
    };
    QByteArray result;
    result.reserve(contents.size());
    const QByteArrayView cut = forEachLine(contents, [&](QByteArrayView line) {
        const auto ours = find(line);
        if (ours == placed.end()) {
            result.append(line).append('\n');
        } else if (!std::exchange(ours->second, true)) {
            result.append(lines[size_t(ours - placed.begin())].bytes).append('\n');
        }
    });
    for (size_t i = 0; i < lines.size(); ++i) {
        if (!placed[i].second) result.append(lines[i].bytes).append('\n');
    }
    if (find(cut) == placed.end()) result.append(cut);
    return result;
}
