#pragma once

#include <QObject>
#include <functional>

/// The keys of the application's own menu: Control+Q quits from whichever of our windows has the keyboard. The editing
/// keys (undo, cut, copy, paste, select all) need nothing here, since the toolkit's text fields handle them themselves.
/// The panel never has the keyboard. Main thread only.
class MainMenu : public QObject {
 public:
    /// Listens to `application` for as long as it lives. `quit` asks for an orderly end.
    MainMenu(QObject& application, std::function<void()> quit);

 protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
    std::function<void()> quit_;
};
