#pragma once

#include <QElapsedTimer>

#include "X11Test.h"

/// A panel that drops can be made on, and what came of them.
class DropPanel : public RedPanel {
 public:
    DropPanel(std::shared_ptr<X11Connection> connection, std::shared_ptr<PointerSampler> sampler, MainLoop& loop)
        : RedPanel(std::move(connection), std::move(sampler), loop) {
        heard.onDropTargeted = [this](bool over) { targeted.append(over); };
        heard.onDropOffered = [this] {
            ++asked;
            return accepts;
        };
        heard.onDrop = [this](std::shared_ptr<Drop> taken) { drop = std::move(taken); };
        setInputRegionNow(QRect(0, 0, 240, 120));
        if (!waitFor([this] { return window().isExposed(); })) throw std::runtime_error("the panel stays invisible");
    }

    /// Loads one form of the drop; absent, too, when no answer comes.
    std::optional<QByteArray> loads(const QString& type) {
        std::optional<QByteArray> result;
        bool answered = false;
        drop->load(type, [&](auto bytes) {
            result = std::move(bytes);
            answered = true;
        });
        EXPECT_TRUE(waitFor([&] { return answered; }, 8));
        return result;
    }

    bool accepts = true;
    int asked = 0;
    QList<bool> targeted;
    std::shared_ptr<Drop> drop;
};
