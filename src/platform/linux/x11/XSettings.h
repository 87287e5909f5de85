#pragma once

#include <QString>

/// A string from the desktop's XSETTINGS; empty if there is none, or no X server. Opens a temporary connection and
/// blocks on the server: only away from the main thread.
QString xSetting(const char* name);
