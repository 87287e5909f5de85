#include "platform/linux/PathReferences.h"

#include <sys/stat.h>

#include <chrono>
#include <future>
#include <memory>

namespace {

constexpr std::chrono::milliseconds kPatience(200);
constexpr std::chrono::milliseconds kPatienceWithSlowDisks(10);

bool exists(const QByteArray& path) {
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0;
}

}  // namespace

std::optional<QByteArray> PathReferences::bookmark(const QUrl& file) const {
    const QString path = file.toLocalFile();
    if (!file.isLocalFile() || !path.startsWith(u'/')) return {};
    return path.toUtf8();
}

std::optional<QUrl> PathReferences::resolve(const QByteArray& bookmark) const {
    if (!bookmark.startsWith('/') || bookmark.contains('\0')) return {};
    const auto answer = std::make_shared<std::promise<bool>>();
    auto found = answer->get_future();
    queue_.run([answer, bookmark] { answer->set_value(exists(bookmark)); });
    slow_ = found.wait_for(slow_ ? kPatienceWithSlowDisks : kPatience) != std::future_status::ready;
    if (!slow_ && !found.get()) return {};
    return QUrl::fromLocalFile(QString::fromUtf8(bookmark));
}
