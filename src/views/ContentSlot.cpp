#include "views/ContentSlot.h"

#include <utility>

ContentSlot::ContentSlot(const ViewContext& context, std::function<bool(const NotchModel&)> isWanted,
                         std::function<std::unique_ptr<View>()> make)
    : context_(context), isWanted_(std::move(isWanted)), make_(std::move(make)) {}

void ContentSlot::update(const std::optional<Animation>& how) {
    const bool wanted = isWanted_(context_.model);
    // A view that returns while it fades out is made anew.
    if (wanted && !touchable()) view_ = make_();
    if (!wanted && touchable()) view_->disappear();
    presence_.aim(wanted ? 1 : 0, how, context_.now());
    if (view_) view_->update(how);
}

void ContentSlot::tidy() {
    if (presence_.target() == 0 && !presence_.moving(context_.now())) view_.reset();
}

void ContentSlot::compose(DisplayList& list, const QRectF& body) const {
    if (!view_) return;
    list.with(QTransform(), presence_.at(context_.now()), [&] { view_->compose(list, body); });
}

double ContentSlot::nextFrame() const {
    return view_ ? view_->nextFrame() : std::numeric_limits<double>::infinity();
}
