#pragma once

#include "platform/BackgroundQueue.h"
#include "platform/Sharing.h"

// What there is to pass a thing on to. Each function looks for one kind of it and may wait for disks and other programs
// for a second or longer: only away from the main thread. The offers do their work on `queue`, which must outlive them.

QList<ShareOffer> mailOffers(BackgroundQueue& queue, const QUrl& thing);
QList<ShareOffer> kdeConnectOffers(BackgroundQueue& queue, const QUrl& thing);
QList<ShareOffer> bluetoothOffers(BackgroundQueue& queue, const QUrl& thing);
/// One offer at most, with a choice of programs.
QList<ShareOffer> programOffers(BackgroundQueue& queue, const QUrl& thing);
