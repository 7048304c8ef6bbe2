#pragma once

#include "core/TVec.h"
#include "face/FaceDetector.h"
#include "face/FaceExport.h"
#include "face/FaceImage.h"
#include "face/FaceModel.h"

namespace zv {

constexpr int kFaceMeshPoints = 468;

/// The dense mesh of a face in the picture: pixels, y down; z in the same scale, away from the viewer, 0
/// about at the head's middle.
struct FaceMeshPoints {
    Vec3f points[kFaceMeshPoints];
    float confidence = 0.0F;  ///< that there is a face: 0 to 1
};

/// Points of the mesh that others refer to. Left and right are the picture's.
namespace face_point {
constexpr int kLeftEyeOuter = 33, kLeftEyeInner = 133, kRightEyeInner = 362, kRightEyeOuter = 263;
constexpr int kNoseTip = 4, kUpperLip = 13, kLowerLip = 14, kMouthLeft = 61, kMouthRight = 291;
constexpr int kChin = 152, kHairline = 10, kForehead = 151;
}  // namespace face_point

/// Finds the mesh of one face in a region around it, by a network that looks at 192 x 192 pixels.
class ZV_FACE_API FaceMesh {
public:
    /// False, with the reason in the log, when the model cannot be used.
    bool load();

    /// @return false when the network fails; whether there is a face, the confidence says
    bool find(const FaceImage& image, const FaceRegion& region, FaceMeshPoints& out);

    /// The same region once more, after find(), as the network sees it in a mirror; the points are back in
    /// the picture, each in its own place.
    bool findInMirror(const FaceRegion& region, FaceMeshPoints& out);

    /// Where to look for the mesh of a face: one and a half times its box, turned as its eyes are.
    static FaceRegion regionOf(const FaceDetection& face);
    static FaceRegion regionOf(const FaceMeshPoints& mesh);

private:
    bool run(const FaceRegion& region, bool isMirror, FaceMeshPoints& out);

    FaceModel mModel;
};

}  // namespace zv
