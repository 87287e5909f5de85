#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <variant>

class Worker;

/// Why a job failed. Of the domain "chew": 1 the image could not be opened, 2 the result could not be made, 3 nor
/// finished, 4 the PDF could not be opened, 5 and 6 its page could not be drawn, 7 there was no text. Of the domain
/// "worker", code 0: the job died, took too long, or answered what makes no sense.
struct ChewError {
    QString domain;
    int code = 0;
    QString description;

    friend bool operator==(const ChewError&, const ChewError&) = default;
};

/// Turns held images into other images, and images and PDFs into text. The work is done by a process of its own, which
/// gets to see nothing but the open file and is not believed more than it; calls wait for it, and for the file's disk,
/// so they are made away from the main thread, where one that waits for ever holds up no other.
class Chewer {
 public:
    enum class Mode { toJPEG, toPNG, smaller };

    /// `worker` must outlive the chewer.
    explicit Chewer(Worker& worker) : worker_(worker) {}

    /// Extensions, in lower case, of the files that can be chewed.
    static const QStringList& chewableExtensions();
    /// Whether the file's name says that it can be chewed, or that text can be read out of it.
    static bool canChew(const QUrl& file);
    static bool canRead(const QUrl& file);

    /// Converts `source` into a new file beside it, or in `fallbackFolder` where that cannot be, and gives the new
    /// file's URL. The source stays as it is.
    std::variant<QUrl, ChewError> chew(const QUrl& source, Mode mode, const QUrl& fallbackFolder);
    /// The text on an image or on the first page of a PDF, its lines joined by line feeds.
    std::variant<QString, ChewError> readText(const QUrl& source);

 private:
    Worker& worker_;
};
