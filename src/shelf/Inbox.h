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

/// A hidden folder inside the dropped folder into which another program writes the file that it promised, so that it
/// can neither overwrite a file nor leave a partial one in sight. The folder is held open and never looked up by path
/// again, so whatever is put in its place stays untouched. Non-empty files in it are moved out or left there, never
/// deleted.
///
/// All but setReply() block on the disk or the other program: call them away from the main thread, one at a time.
class Inbox {
 public:
    /// What the other program has answered about its promise.
    enum class Reply { none, written, refused };
    enum class Contents { nothing, emptyFiles, things };

    /// Creates an inbox in the dropped folder, `folder`; null on failure.
    static std::shared_ptr<Inbox> make(const QUrl& folder);
    /// The URL to which the other program is to write `name`.
    QUrl place(const QString& name) const;

    /// Any thread.
    void setReply(Reply reply);
    /// Waits until the promised files are there, not empty, and no longer changing; until the promise is refused; or
    /// until nothing has changed for `timeout` seconds, or for one second if the reply is `written` and `prompt` is
    /// set. Returns what is there.
    Contents await(double timeout, bool prompt);

    /// Moves all files and folders into the dropped folder under free names, starting with the one called `first`.
    QList<QUrl> moveOut(const QString& first);
    /// Deletes the inbox and the empty files in it. Returns false and changes nothing if it contains anything else.
    bool discard();

    /// Moves out the contents of the unused inboxes in `folder`: those of processes that ended before the writers did.
    static QList<QUrl> moveOutLeftovers(const QUrl& folder);

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
    std::atomic<Reply> reply_ = Reply::none;
    QSet<QByteArray> beingWritten_;
};
