#pragma once

#include "platform/Pasteboard.h"

/// Qt's clipboard, whose contents last as long as the program. Needs a QGuiApplication.
class QtPasteboard : public Pasteboard {
 public:
    void setString(const QString& text) override;
};
