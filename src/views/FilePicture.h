#pragma once

#include <QImage>
#include <QString>

/// The picture of a file on its chip, with a shadow.
struct FilePicture {
    static constexpr double kSide = 30;   ///< width and height in points, without the shadow
    static constexpr double kMargin = 4;  ///< points around it, for the shadow

    /// `icon`, or if that is null a drawn sheet of paper labelled with `extension`.
    static QImage make(const QImage& icon, const QString& extension);
};
