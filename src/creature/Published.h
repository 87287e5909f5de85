#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "motion/Animation.h"
#include "platform/MainLoop.h"
#include "platform/Signal.h"

/// An object whose Published members announce their changes. Main thread only.
class ObservableObject {
 public:
    ObservableObject() = default;
    ObservableObject(const ObservableObject&) = delete;
    ObservableObject& operator=(const ObservableObject&) = delete;

    /// Emitted before any published member changes.
    Signal<> objectWillChange;
    /// Emitted after a change, or once after all changes of a withAnimation block, with the block's animation; without
    /// one the change shows at once.
    Signal<const std::optional<Animation>&> objectDidChange;

    /// Runs `block`; observers see what it writes as one change made with `animation`. Blocks nest: each has its own
    /// animation.
    template <class Block>
    void withAnimation(const Animation& animation, Block&& block) {
        const Transaction outer = std::exchange(transaction_, Transaction{animation, 0, true});
        std::forward<Block>(block)();
        const Transaction inner = std::exchange(transaction_, outer);
        if (inner.changes > 0) objectDidChange.emit(inner.animation);
    }

    /// Bracket one change: of a published member, or of plain state that the views read.
    void willChange() { objectWillChange.emit(); }
    void didChange() {
        if (transaction_.open)
            ++transaction_.changes;
        else
            objectDidChange.emit(std::nullopt);
    }

 private:
    struct Transaction {
        std::optional<Animation> animation;
        int changes = 0;
        bool open = false;
    };
    Transaction transaction_;
};

/// A member of an ObservableObject that reads and writes like a plain T. Every write, even of an equal value, emits
/// willChange, replaces the value, emits didSet, and then reports the change to the owner.
template <class T>
class Published {
 public:
    Published(ObservableObject& owner, T initial) : owner_(owner), value_(std::move(initial)) {}
    Published(const Published&) = delete;
    /// Copies the value only; each keeps its own observers.
    Published& operator=(const Published& other) {
        if (this != &other) *this = other.value_;
        return *this;
    }

    const T& get() const { return value_; }
    operator const T&() const { return value_; }  // NOLINT(google-explicit-constructor): reads look like reads
    const T* operator->() const { return &value_; }

    Published& operator=(T value) {
        owner_.willChange();
        willChange.emit(value);
        value_ = std::move(value);
        didSet.emit();
        owner_.didChange();
        return *this;
    }

    /// For the event counters, which only ever grow by one.
    Published& operator++() { return *this = value_ + 1; }

    /// Emitted with the new value before it replaces the old one.
    Signal<const T&> willChange;
    /// Emitted after the write, before the owner reports the change.
    Signal<> didSet;

    /// Calls `observer` through the main loop, with the current value and with every later one.
    [[nodiscard]] Subscription deliver(MainLoop& loop, std::function<void(const T&)> observer) {
        auto shared = std::make_shared<std::function<void(const T&)>>(std::move(observer));
        auto forward = [&loop, weak = std::weak_ptr(shared)](const T& value) {
            loop.post([weak, value] {
                if (const auto alive = weak.lock()) (*alive)(value);
            });
        };
        forward(value_);
        auto subscription = willChange.subscribe(forward);
        return std::make_shared<std::pair<decltype(shared), Subscription>>(std::move(shared), std::move(subscription));
    }

 private:
    ObservableObject& owner_;
    T value_;
};
