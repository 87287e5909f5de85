#pragma once

#include <QImage>
#include <QJsonObject>
#include <optional>

/// The picture in the worker's answer to a "thumbnail" request, ready to paint; absent unless it is at most `side`
/// pixels each way and has exactly as many bytes as its size takes: the picture that was decoded may have taken over
/// the worker. Any thread.
std::optional<QImage> thumbnailIn(const std::optional<QJsonObject>& answer, int side);
