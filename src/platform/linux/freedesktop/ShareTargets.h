#pragma once

#include "platform/BackgroundQueue.h"
#include "platform/Sharing.h"

// The ways to share a thing. Each function looks for one kind and may block on disks and other programs for a second or
// longer: only away from the main thread. The offers do their work on `queue`, which must outlive them.

QList<ShareOffer> mailOffers(BackgroundQueue& queue, const QUrl& thing);
QList<ShareOffer> kdeConnectOffers(BackgroundQueue& queue, const QUrl& thing);
QList<ShareOffer> bluetoothOffers(BackgroundQueue& queue, const QUrl& thing);
/// At most one offer, with a submenu of programs.
QList<ShareOffer> programOffers(BackgroundQueue& queue, const QUrl& thing);
