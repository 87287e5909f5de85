#include "app/MainMenu.h"

#include <QKeyEvent>

MainMenu::MainMenu(QObject& application, std::function<void()> quit) : quit_(std::move(quit)) {
    application.installEventFilter(this);
}

bool MainMenu::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QObject::eventFilter(receiver, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    // Not QKeySequence::Quit, which has no key without a platform theme.
    if (key->key() != Qt::Key_Q || key->modifiers() != Qt::ControlModifier)
        return QObject::eventFilter(receiver, event);
    quit_();
    return true;
}
