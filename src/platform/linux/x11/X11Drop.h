#pragma once

#include "platform/Drop.h"
#include "platform/linux/x11/DragForms.h"
#include "platform/linux/x11/SelectionReader.h"

/// The two windows of an XDND drag.
struct XdndPeers {
    xcb_window_t source = XCB_NONE;
    xcb_window_t target = XCB_NONE;
};

/// Tells the source that the target has finished with the drop; `taken` if it copied anything.
void sendXdndFinished(X11Connection& connection, const XdndPeers& peers, bool taken);

/// A drop from another X11 program. Promised files use the Direct Save Protocol (XDS).
class X11Drop : public Drop {
 public:
    /// `time` is that of the drop. `loop` must outlive this.
    X11Drop(std::shared_ptr<X11Connection> connection, MainLoop& loop, const XdndPeers& peers,
            std::vector<DragForm> forms, xcb_timestamp_t time);
    ~X11Drop() override;

    QStringList types() const override;
    void load(const QString& type, std::function<void(std::optional<QByteArray>)> done) override;
    std::optional<QByteArray> promisedName() const override { return promisedName_; }
    void savePromise(const QUrl& target, std::function<void(bool saved)> done) override;
    void declinePromise() override { setPromisedFile({}); }

 private:
    using Loaded = std::function<void(std::optional<QByteArray>)>;

    /// Reads the text from the first of `targets` for which the source delivers it.
    void loadText(std::vector<QByteArray> targets, Loaded done);
    std::optional<QByteArray> utf8(const QByteArray& target, const SelectionReader::Data& data);
    void setPromisedFile(const QByteArray& uri);

    std::shared_ptr<X11Connection> connection_;
    XdndPeers peers_;
    std::vector<DragForm> forms_;
    std::optional<QByteArray> promisedName_;
    bool taken_ = false;  // the source has given something
    SelectionReader reader_;
};
