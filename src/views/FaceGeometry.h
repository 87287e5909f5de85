#pragma once

/// Sizes and places of the face's parts, in points from the top of the panel and from its middle.
struct FaceGeometry {
    double top;      ///< of the eyes
    double eye;      ///< diameter
    double spacing;  ///< between the eyes
    double pupil;    ///< diameter
    double gaze;     ///< how far the pupils go after the pointer
    double swallow;  ///< how far they look down at what is swallowed
    double cheek, cheekGap, cheekDrop;
    double arcWidth, arcHeight, arcDroop;  ///< of an eye that sleeps

    static const FaceGeometry resting, open;
};

inline constexpr FaceGeometry FaceGeometry::resting{36, 17, 13, 8, 3, 3, 9, 46, 5, 16, 7, 6};
inline constexpr FaceGeometry FaceGeometry::open{42, 30, 22, 13, 6.5, 5, 13, 74, 8, 28, 10, 9};
