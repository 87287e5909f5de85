#pragma once

#include <QUrl>

#include "platform/BackgroundQueue.h"

/// Opens a file or a link with the user's default program for it. Does nothing for an incomplete URL, or if neither
/// xdg-open nor gio is installed. Returns at once; the work is done on `queue`.
void openUrl(BackgroundQueue& queue, const QUrl& url);

/// Shows a file selected in the user's file manager; opens its folder if none supports that or a running one does not
/// answer within three seconds. Returns at once; the work is done on `queue`.
void revealFile(BackgroundQueue& queue, const QUrl& file);

/// Opens the accessibility page of the settings program that is installed, if any. Returns at once.
void openAccessibilitySettings(BackgroundQueue& queue);
