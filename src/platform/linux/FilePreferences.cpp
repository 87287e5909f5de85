#include "platform/linux/FilePreferences.h"

#include <QLocale>
#include <QStandardPaths>
#include <algorithm>
#include <cctype>
#include <future>
#include <mutex>
#include <utility>

#include "platform/linux/AtomicFile.h"

namespace {

constexpr qint64 kLargest = 16 * 1024 * 1024;  // bytes

const QByteArray kBool = "bool";
const QByteArray kNumber = "number";
const QByteArray kText = "text";
const QByteArray kData = "data";
const QByteArray kList = "list";

/// Everything but what would break a line or a list of words stays as it is.
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

bool isPlain(const QByteArray& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
}

/// `words` has a space before each element, which may be empty.
QVariant readList(const QByteArray& words) {
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
    if (type == kList) return readList(rest);
    const QByteArray text = rest.mid(1);
    if (type == kBool) return text == "true" ? QVariant(true) : text == "false" ? QVariant(false) : QVariant();
    if (type == kNumber) {
        bool ok = false;
        const double number = text.toDouble(&ok);
        return ok ? QVariant(number) : QVariant();
    }
    const auto bytes = decoded(text);
    if (!bytes) return {};
    if (type == kData) return *bytes;
    return type == kText ? QVariant(QString::fromUtf8(*bytes)) : QVariant();
}

}  // namespace

/// Takes whole contents from the main thread and writes the newest of them, in the queue.
class FilePreferences::Writer {
 public:
    explicit Writer(const QString& path) : file_(path) {}

    AtomicFile& file() { return file_; }

    /// True if nothing is waiting to be written yet.
    bool offer(QByteArray contents) {
        const std::lock_guard lock(mutex_);
        const bool first = !waiting_;
        waiting_ = std::move(contents);
        return first;
    }

    void write() {
        std::optional<QByteArray> contents;
        {
            const std::lock_guard lock(mutex_);
            contents = std::exchange(waiting_, std::nullopt);
        }
        if (contents) file_.replace(*contents);
    }

 private:
    AtomicFile file_;
    std::mutex mutex_;
    std::optional<QByteArray> waiting_;
};

FilePreferences::FilePreferences(const QString& path, SerialQueue& queue)
    : writer_(std::make_shared<Writer>(path)), queue_(queue) {
    const auto contents = writer_->file().read(kLargest);
    if (!contents) return;
    for (qsizetype start = 0; start < contents->size();) {
        const qsizetype end = contents->indexOf('\n', start);
        if (end < 0) {
            // Cut off, so that its value cannot be trusted.
            cutLine_ = parse(contents->mid(start));
            break;
        }
        lines_.push_back(parse(contents->mid(start, end - start)));
        start = end + 1;
    }
}

FilePreferences::~FilePreferences() {
    flush();
}

void FilePreferences::flush() {
    std::promise<void> reached;
    queue_.run([&reached] { reached.set_value(); });
    reached.get_future().wait();
}

QString FilePreferences::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/glimmet/preferences");
}

FilePreferences::Line FilePreferences::parse(const QByteArray& bytes) {
    const qsizetype equals = bytes.indexOf(" = ");
    if (equals <= 0 || !isPlain(bytes.left(equals))) return {{}, {}, bytes};
    Line line{QString::fromLatin1(bytes.left(equals)), {}, bytes};
    if (!isPlain(bytes)) return line;
    const QByteArray typeAndValue = bytes.mid(equals + 3);
    const qsizetype space = typeAndValue.indexOf(' ');
    const qsizetype length = space < 0 ? typeAndValue.size() : space;
    line.value = readValue(typeAndValue.left(length), typeAndValue.mid(length));
    return line;
}

QVariant FilePreferences::find(const QString& key, int type) const {
    // Of a key that stands twice the later line holds, as if both had been written in turn.
    const auto found = std::find_if(lines_.rbegin(), lines_.rend(),
                                    [&](const Line& line) { return line.key == key && line.value.isValid(); });
    return found != lines_.rend() && found->value.metaType().id() == type ? found->value : QVariant();
}

bool FilePreferences::boolean(const QString& key) const {
    return find(key, QMetaType::Bool).toBool();
}

std::optional<double> FilePreferences::number(const QString& key) const {
    const QVariant value = find(key, QMetaType::Double);
    return value.isValid() ? std::optional(value.toDouble()) : std::nullopt;
}

std::optional<QString> FilePreferences::text(const QString& key) const {
    const QVariant value = find(key, QMetaType::QString);
    return value.isValid() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QByteArray> FilePreferences::data(const QString& key) const {
    const QVariant value = find(key, QMetaType::QByteArray);
    return value.isValid() ? std::optional(value.toByteArray()) : std::nullopt;
}

std::optional<QList<QByteArray>> FilePreferences::dataList(const QString& key) const {
    const QVariant value = find(key, qMetaTypeId<QList<QByteArray>>());
    return value.isValid() ? std::optional(value.value<QList<QByteArray>>()) : std::nullopt;
}

void FilePreferences::setBoolean(const QString& key, bool value) {
    set(key, value, kBool + (value ? " true" : " false"));
}

void FilePreferences::setNumber(const QString& key, double value) {
    set(key, value, kNumber + ' ' + QByteArray::number(value, 'g', QLocale::FloatingPointShortest));
}

void FilePreferences::setText(const QString& key, const QString& value) {
    set(key, value, kText + ' ' + encoded(value.toUtf8()));
}

void FilePreferences::setData(const QString& key, const QByteArray& value) {
    set(key, value, kData + ' ' + encoded(value));
}

void FilePreferences::setDataList(const QString& key, const QList<QByteArray>& value) {
    QByteArray words = kList;
    for (const QByteArray& element : value) words += ' ' + encoded(element);
    set(key, QVariant::fromValue(value), words);
}

void FilePreferences::set(const QString& key, const QVariant& value, const QByteArray& typeAndValue) {
    Line line{key, value, key.toLatin1() + " = " + typeAndValue};
    const auto stands = std::find_if(lines_.begin(), lines_.end(), [&](const Line& l) { return l.key == key; });
    if (stands == lines_.end()) {
        lines_.push_back(std::move(line));
    } else {
        *stands = std::move(line);
        lines_.erase(std::remove_if(stands + 1, lines_.end(), [&](const Line& l) { return l.key == key; }),
                     lines_.end());
    }
    if (cutLine_.key == key) cutLine_ = {};
    QByteArray contents;
    for (const Line& l : lines_) contents += l.bytes + '\n';
    contents += cutLine_.bytes;
    if (writer_->offer(contents)) queue_.run([writer = writer_] { writer->write(); });
}
