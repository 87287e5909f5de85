#pragma once

/// Sizes and positions of the parts of the face, in points from the top and the centre line of the panel.
struct FaceGeometry {
    double top;      ///< of the eyes
    double eye;      ///< diameter
    double spacing;  ///< between the eyes
    double pupil;    ///< diameter
    double gaze;     ///< how far the pupils follow the pointer
    double swallow;  ///< how far they look down while swallowing
    double cheek, cheekGap, cheekDrop;
    double arcWidth, arcHeight, arcDroop;  ///< of a sleeping eye

    static const FaceGeometry resting, open;
};

inline constexpr FaceGeometry FaceGeometry::resting{36, 17, 13, 8, 3, 3, 9, 46, 5, 16, 7, 6};
inline constexpr FaceGeometry FaceGeometry::open{42, 30, 22, 13, 6.5, 5, 13, 74, 8, 28, 10, 9};
