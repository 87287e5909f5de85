#pragma once

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QImage>
#include <QProcess>
#include <QStringList>
#include <functional>
#include <memory>

/// Waits until `condition` holds and lets Qt work meanwhile, where there is a Qt application. Use it as
/// `ASSERT_TRUE(waitFor(...)) << "what was expected"`: after `seconds` it gives a failure.
[[nodiscard]] testing::AssertionResult waitFor(const std::function<bool()>& condition, double seconds = 5);

/// Lets Qt work for `seconds`; for claims that something does not happen.
void letPass(double seconds);

/// The path of a program that is built beside the test's own.
QString besideTheTest(const char* program);

/// A child process that ends, by its own id, with this object or with a test that crashes.
class Child : public QProcess {
 public:
    /// Starts the program, on a display if one is given, where a point is one pixel.
    explicit Child(const QStringList& command, const QByteArray& display = {});
    ~Child() override;
};

template <class Reply>
std::unique_ptr<Reply, decltype(&free)> owned(Reply* reply) {
    return {reply, &free};
}

/// A client of an X server: a connection of its own. Throws std::runtime_error when there is no server.
class XClient {
 public:
    explicit XClient(const QByteArray& display);
    ~XClient() { xcb_disconnect(connection_); }
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;

    xcb_connection_t* xcb() const { return connection_; }
    xcb_window_t root() const { return root_; }
    xcb_atom_t atom(const char* name) const;
    /// Waits until the server has carried out what came before on this connection.
    void sync() const { owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr)); }
    /// The first of a property's 32-bit values; 0 if there is none.
    uint32_t value(xcb_window_t window, const char* property) const;
    /// Sends a client message about `window`, to it unless told otherwise.
    void send(const char* type, xcb_window_t window, uint32_t first, xcb_window_t to = XCB_NONE) const;
    /// Where a window is; empty when it is gone.
    QRect frameOf(xcb_window_t window) const;
    bool visible(xcb_window_t window) const;

 private:
    xcb_connection_t* connection_;
    xcb_window_t root_ = XCB_NONE;
};

/// An X server of our own on a free display, what runs on it, and a client for the test's own requests. Throws
/// std::runtime_error when something does not start.
class XSession {
 public:
    explicit XSession(QSize size = {1280, 800});

    /// The display's name, such as ":7".
    QByteArray display() const { return display_; }
    xcb_connection_t* xcb() const { return client_->xcb(); }
    xcb_window_t root() const { return client_->root(); }
    xcb_atom_t atom(const char* name) const { return client_->atom(name); }
    void sync() const { client_->sync(); }
    const XClient& client() const { return *client_; }

    /// All return once the manager does its work, or no longer.
    void startWindowManager();
    void startCompositor();
    void stopCompositor();
    /// Runs a program on the display to its end. What it prints; adds a failure if it fails.
    QByteArray run(const QString& command) const;

    /// What the screen shows, in device pixels.
    QImage screenshot(const QRect& area) const;
    /// The window in _NET_ACTIVE_WINDOW; 0 for none.
    xcb_window_t activeWindow() const { return client_->value(root(), "_NET_ACTIVE_WINDOW"); }
    /// The root's children, from the bottom to the top.
    QList<xcb_window_t> stacking() const;

    // XTEST input.
    void moveTo(QPoint place) { fake(XCB_MOTION_NOTIFY, 0, place); }
    void press(int button) { fake(XCB_BUTTON_PRESS, button); }
    void release(int button) { fake(XCB_BUTTON_RELEASE, button); }
    void click(QPoint place, int button = 1) { moveTo(place), press(button), release(button); }
    void key(int keycode, bool down) { fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keycode); }
    /// Moves the pointer in a straight line, one motion every `stepMilliseconds`; Qt works meanwhile.
    void glide(QPoint from, QPoint to, int steps, double stepMilliseconds);

 private:
    void fake(int type, int detail, QPoint place = {});
    bool composited() const;

    QByteArray display_;
    std::unique_ptr<Child> server_, windowManager_, compositor_;
    std::unique_ptr<XClient> client_;
};

/// A plain window of another program.
class OtherWindow {
 public:
    struct Options {
        QRect geometry{100, 100, 300, 200};
        const char* instance = "other";
        const char* className = "Other";
        uint32_t colour = 0x3060c0;
        bool overrideRedirect = false;
        bool fullScreen = false;
    };
    /// Maps the window and waits until it is visible.
    OtherWindow(const XSession& session, const Options& options);

    xcb_window_t id() const { return window_; }
    bool active() const { return session_.activeWindow() == window_; }
    /// A second window of the same program, with the same class; it lives as long as this object.
    xcb_window_t openSecond() { return create(); }
    void raise();
    /// Asks the window manager for the focus, as a pager does.
    void activate() { client_.send("_NET_ACTIVE_WINDOW", window_, 2, client_.root()); }
    /// The buttons that were pressed in the window so far.
    const QList<int>& presses();

 private:
    xcb_window_t create();

    const XSession& session_;
    Options options_;
    XClient client_;
    xcb_window_t window_;
    QList<int> presses_;
};
