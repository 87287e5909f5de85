#pragma once

#include "views/View.h"

/// What a hidden creature shows: a chevron at the lower edge while the pointer is over it.
class HiddenView : public View {
 public:
    explicit HiddenView(const ViewContext& context) : context_(context) {}

    void update(const std::optional<Animation>& how) override;
    void compose(DisplayList& list, const QRectF& body) const override;

 private:
    double opacity() const { return context_.model.hovering ? 0.55 : 0; }

    const ViewContext& context_;
    bool seenHovering_ = context_.model.hovering;
    Animated<double> chevron_{context_.animations, opacity(), 0.002};  // its opacity
};
