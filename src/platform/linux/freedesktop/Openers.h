#pragma once

#include <QUrl>

#include "platform/BackgroundQueue.h"

/// Opens a file or a link with the user's default program for it. Nothing happens for what is not a complete URL, or
/// where the desktop's opener is missing. Returns at once; the work is done on `queue`.
void openUrl(BackgroundQueue& queue, const QUrl& url);

/// Shows a file selected in the user's file manager; opens its folder if no manager offers that or none answers within
/// three seconds. Returns at once; the work is done on `queue`.
void revealFile(BackgroundQueue& queue, const QUrl& file);
