#pragma once

#include <QString>

/// A text among the settings that an X11 desktop keeps for all toolkits; empty if it keeps none, or where there is no X
/// server. Has a connection of its own for the moment: waits for the server, only away from the main thread.
QString xSetting(const char* name);
