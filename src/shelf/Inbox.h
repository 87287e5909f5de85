#pragma once

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>
#include <QUrl>
#include <atomic>
#include <chrono>
#include <memory>

#include "platform/Descriptor.h"

/// A hidden folder inside the dropped folder, in which another program writes what it has promised: so it can neither
/// replace a file nor leave half of one in sight. It is held open, and nothing is looked up by its path again: whatever
/// the other program puts in its place stays untouched. What is in it is moved out or left, never deleted.
///
/// But for tell(), these wait for the disk or for the other program, so they are called away from the main thread, one
/// after the other.
class Inbox {
 public:
    /// What the other program says about its promise.
    enum class Word { none, written, refused };
    enum class Contents { nothing, emptyFiles, things };

    /// Null if it cannot be made. `folder` is the dropped folder.
    static std::shared_ptr<Inbox> make(const QUrl& folder);
    /// Where the other program is to write `name`.
    QUrl place(const QString& name) const;

    /// Any thread.
    void tell(Word word);
    /// Waits until what was promised is there, not empty, and at rest; until the promise is refused; or until nothing
    /// has grown for `patience` seconds, of which one is enough where the word is `written` and `prompt` is set. Tells
    /// what is there.
    Contents await(double patience, bool prompt);

    /// Moves all files and folders out into the dropped folder, that of the name `first` first, under free names.
    QList<QUrl> bringOut(const QString& first);
    /// Removes it with the empty files in it. False, and nothing changed, if there is anything else.
    bool discard();

    /// Brings out what is left in the inboxes of `folder` that nobody uses: a program that ended in the middle did not
    /// await their writers.
    static QList<QUrl> bringOutLeft(const QUrl& folder);

 private:
    using Time = std::chrono::steady_clock::time_point;

    Inbox(QUrl folder, QByteArray name, Descriptor parent, Descriptor self);
    void watch(int folder, int& budget);
    bool sleep(double seconds);
    bool readEvents();
    Contents contents() const;

    QUrl folder_;
    QByteArray name_;
    Descriptor parent_, self_, events_, wake_;
    std::atomic<Word> word_ = Word::none;
    QSet<QByteArray> beingWritten_;
};
