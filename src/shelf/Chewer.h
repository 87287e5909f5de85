#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <variant>

class Worker;

/// Why a job failed. Domain "chew": 1 the image could not be opened, 2 the result could not be created, 3 it could not
/// be completed, 4 the PDF could not be opened, 5 and 6 its page could not be rendered, 7 no text was found. Domain
/// "worker", code 0: the job crashed, timed out, or gave an invalid answer.
struct ChewError {
    QString domain;
    int code = 0;
    QString description;

    friend bool operator==(const ChewError&, const ChewError&) = default;
};

/// Converts held images, and reads the text in images and PDFs. A separate process does the work; it sees only the open
/// file, and its answers are trusted no more than that file. Calls block on the process and on the file's disk,
/// possibly forever: never call on the main thread.
class Chewer {
 public:
    enum class Mode { toJPEG, toPNG, smaller };

    /// `worker` must outlive the chewer.
    explicit Chewer(Worker& worker) : worker_(worker) {}

    /// Lower-case extensions of the files that can be chewed.
    static const QStringList& chewableExtensions();
    /// Whether the file can be chewed, or its text read, going by its extension.
    static bool canChew(const QUrl& file);
    static bool canRead(const QUrl& file);

    /// Converts `source` into a new file beside it, or in `fallbackFolder` if its own folder is not writable. Returns
    /// the new file's URL; the source is not changed.
    std::variant<QUrl, ChewError> chew(const QUrl& source, Mode mode, const QUrl& fallbackFolder);
    /// The text in an image or on the first page of a PDF, its lines joined with line feeds.
    std::variant<QString, ChewError> readText(const QUrl& source);

 private:
    Worker& worker_;
};
