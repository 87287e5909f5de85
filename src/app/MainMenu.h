#pragma once

#include <QObject>
#include <functional>

/// The application's keyboard shortcuts: Control+Q quits from any of our windows that has the keyboard focus. Qt's text
/// fields handle the editing keys (undo, cut, copy, paste, select all) themselves. The panel never has the focus. Main
/// thread only.
class MainMenu : public QObject {
 public:
    /// Filters the events of `application` for as long as it lives. `quit` requests an orderly exit.
    MainMenu(QObject& application, std::function<void()> quit);

 protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
    std::function<void()> quit_;
};
