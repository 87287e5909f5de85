#pragma once

#include "platform/Pasteboard.h"

/// The clipboard through the toolkit, which serves it for as long as the program runs. Needs a QGuiApplication.
class QtPasteboard : public Pasteboard {
 public:
    void setString(const QString& text) override;
};
