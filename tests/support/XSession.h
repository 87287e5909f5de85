#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Waits until `condition` holds and lets Qt work meanwhile, where there is a Qt application. Use it as
/// `ASSERT_TRUE(waitFor(...)) << "what was expected"`: after `seconds` it gives a failure.
[[nodiscard]] testing::AssertionResult waitFor(const std::function<bool()>& condition, double seconds = 5);

/// Lets Qt work for `seconds`; for claims that something does not happen.
void letPass(double seconds);

/// A child process that ends, by its own id, with this object.
class Child {
 public:
    /// Starts `arguments[0]` from the PATH with `environment` ("NAME=value") added to ours and its output dropped; the
    /// descriptor `inherited` stays open in it.
    explicit Child(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {},
                   int inherited = -1);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return pid_; }
    bool running();

 private:
    pid_t pid_ = -1;
};

/// An X server of our own on a free display, and what runs on it. Throws std::runtime_error when it cannot start.
class XSession {
 public:
    struct Options {
        QSize size{1280, 800};
        int dpi = 96;
    };
    XSession() : XSession(Options{}) {}
    explicit XSession(const Options& options);
    ~XSession();

    /// The display's name, such as ":7".
    QByteArray display() const { return display_; }
    /// A connection for the test's own requests.
    xcb_connection_t* xcb() const { return connection_; }
    xcb_window_t root() const { return root_; }
    xcb_atom_t atom(const char* name) const;
    /// Waits until the server has carried out what came before on this connection.
    void sync() const;

    /// Both return once the manager does its work.
    void startWindowManager();
    void startCompositor();
    void stopCompositor();

    /// What the screen shows, in device pixels.
    QImage screenshot(const QRect& area) const;
    /// The window in _NET_ACTIVE_WINDOW; 0 for none.
    xcb_window_t activeWindow() const;
    /// What another program gets as text from the clipboard.
    QByteArray clipboard() const;
    /// The root's children, from the bottom to the top.
    QList<xcb_window_t> stacking() const;

    // XTEST input.
    void moveTo(QPoint place);
    void press(int button);
    void release(int button);
    void click(QPoint place, int button = 1);
    void key(int keycode, bool down);
    /// Presses and releases the key with this symbol `times` times.
    void tapKey(uint32_t keysym, int times = 1);
    /// Moves the pointer in a straight line, one motion every `stepMilliseconds`; Qt works meanwhile.
    void glide(QPoint from, QPoint to, int steps, double stepMilliseconds);

 private:
    void fake(int type, int detail, QPoint place = {});
    bool selectionOwned(const char* name) const;

    std::unique_ptr<Child> server_, windowManager_, compositor_;
    QByteArray display_;
    xcb_connection_t* connection_ = nullptr;
    xcb_window_t root_ = 0;
};

/// A plain window of another program, that is of a connection of its own.
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
    ~OtherWindow();
    OtherWindow(const OtherWindow&) = delete;
    OtherWindow& operator=(const OtherWindow&) = delete;

    xcb_window_t id() const { return window_; }
    bool active() const { return session_.activeWindow() == window_; }
    /// A second window of the same program, with the same class; it lives as long as this object.
    xcb_window_t openSecond();
    void raise();
    /// Asks the window manager for the focus, as a pager does.
    void activate();
    /// The buttons that were pressed in the window so far.
    const QList<int>& presses();

 private:
    xcb_window_t create(const Options& options);

    const XSession& session_;
    Options options_;
    xcb_connection_t* connection_;
    xcb_window_t window_ = 0;
    QList<int> presses_;
};
