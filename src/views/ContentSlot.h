#pragma once

#include <functional>
#include <memory>

#include "views/View.h"

/// Holds a view that comes and goes with the state of the model: it is created when it is wanted, fades in and out, and
/// is destroyed after it has faded out. Main thread only.
class ContentSlot {
 public:
    ContentSlot(const ViewContext& context, std::function<bool(const NotchModel&)> isWanted,
                std::function<std::unique_ptr<View>()> make);

    void update(const std::optional<Animation>& how);
    /// Destroys a view that has faded out.
    void tidy();
    void compose(DisplayList& list, const QRectF& body) const;
    /// See View.
    double nextFrame() const;
    /// The view if it reacts to the pointer; null if there is none or it is fading out.
    View* touchable() const { return presence_.target() == 1 ? view_.get() : nullptr; }

 private:
    const ViewContext& context_;
    std::function<bool(const NotchModel&)> isWanted_;
    std::function<std::unique_ptr<View>()> make_;
    std::unique_ptr<View> view_;
    Animated<double> presence_{context_.animations, 0, 0.002};
};
