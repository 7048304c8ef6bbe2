#pragma once

#include "algorithm/AlgTypes.h"
#include "core/TVec.h"

namespace zv {

/// A face in coordinates of its own: origin midway between the eyes, x towards the eye at the picture's
/// right, y up, the unit the distance of the eyes. All lengths and places below are in these and are brought
/// into the range that a face can have, so that points that are wrong give a wrong face, but never a broken
/// one.
struct FaceGeometry {
    Vec2f origin;        ///< in pixels of the picture, origin bottom left
    Vec2f right;         ///< unit vector, in pixels of the picture; up is (-right.y, right.x)
    float unit = 0.0F;   ///< in pixels
    float trust = 0.0F;  ///< 0 to 1; falls with the confidence of a face that leaves

    // In order of left and right in the picture:
    Vec2f eyes[2];
    float eyeHalf[2] = {};   ///< half the width of each eye
    float faceHalf[2] = {};  ///< from the midline to the side of the face at the level of the cheeks
    Vec2f brows[2][5];       ///< along the middle of each brow

    Vec2f bridge, noseTip, mouth, chin;
    float noseHalf = 0.0F;
    float mouthHalf = 0.0F;
    float lipHalf = 0.0F;   ///< half the height of the mouth
    float hairline = 0.0F;  ///< y of where the forehead ends, estimated

    /// False when there is no face in the points: they are not finite, not apart, or upside down.
    bool set(const kel_algorithm::AlgFaceLandmarks& face);

    Vec2f toFace(Vec2f pixel) const;
    Vec2f toPicture(Vec2f place) const;
    /// x of the line from the bridge of the nose to the chin.
    float midline(float y) const;
};

}  // namespace zv
