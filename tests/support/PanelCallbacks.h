#pragma once

#include "platform/PanelWindow.h"

/// Passes on what happens to a panel window; whatever is empty does nothing.
struct PanelCallbacks : PanelWindow::Listener {
    std::function<void()> onExpose;
    std::function<void(PanelWindow::Button, QPointF position, QPointF pointer)> onPress;
    std::function<void(QPointF pointer)> onDrag;
    std::function<void(PanelWindow::Button)> onRelease;
    std::function<void(bool)> onDropTargeted;
    std::function<bool()> onDropOffered;
    std::function<void(std::shared_ptr<Drop>)> onDrop;

    void exposed() override { call(onExpose); }
    void pressed(PanelWindow::Button button, QPointF position, QPointF pointer) override {
        call(onPress, button, position, pointer);
    }
    void dragged(QPointF pointer) override { call(onDrag, pointer); }
    void released(PanelWindow::Button button, QPointF) override { call(onRelease, button); }
    void dropTargeted(bool over) override { call(onDropTargeted, over); }
    bool acceptsDrop() override { return onDropOffered && onDropOffered(); }
    void dropped(std::shared_ptr<Drop> drop) override { call(onDrop, std::move(drop)); }

 private:
    template <class... Arguments>
    static void call(const std::function<void(Arguments...)>& callback, std::type_identity_t<Arguments>... arguments) {
        if (callback) callback(std::move(arguments)...);
    }
};
