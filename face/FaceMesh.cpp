#include "face/FaceMesh.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "face/FacePose.h"

namespace zv {

namespace {

constexpr const char* kFile = "zv_res/models/facemesh.onnx";
constexpr int kSize = 192;
constexpr float kAroundBox = 1.5F;  // side of the region to the longer side of the box

float directionOf(float x, float y) {
    return std::atan2(y, x);
}

}  // namespace

bool FaceMesh::load() {
    return mModel.load(kFile, {"input", {1, 3, kSize, kSize}},
                       {{"output_mesh", {1, kFaceMeshPoints * 3}}, {"output_faceflag", {1, 1}}});
}

bool FaceMesh::find(const FaceImage& image, const FaceRegion& region, FaceMeshPoints& out) {
    if (!mModel.isLoaded()) {
        return false;
    }
    sampleRegion(image, region, kSize, FaceBorder::Repeated, 1.0F / 255.0F, 0.0F, mModel.input());
    return run(region, false, out);
}

bool FaceMesh::findInMirror(const FaceRegion& region, FaceMeshPoints& out) {
    if (!mModel.isLoaded()) {
        return false;
    }
    for (float *row = mModel.input(), *const end = row + 3 * kSize * kSize; row != end; row += kSize) {
        std::reverse(row, row + kSize);
    }
    return run(region, true, out);
}

bool FaceMesh::run(const FaceRegion& region, bool isMirror, FaceMeshPoints& out) {
    if (!mModel.run()) {
        return false;
    }
    const float scale = region.side / static_cast<float>(kSize);
    const float c = std::cos(region.angle) * scale, s = std::sin(region.angle) * scale;
    const std::int32_t* const mirrored = faceMeshMirror();
    const float* values = mModel.output(0);
    float sum = *mModel.output(1);
    for (int i = 0; i < kFaceMeshPoints; ++i, values += 3) {
        // From edge to edge the network's coordinates run from 0 to the size.
        const float u = (values[0] - kSize / 2.0F) * (isMirror ? -1.0F : 1.0F), v = values[1] - kSize / 2.0F;
        Vec3f& point = out.points[isMirror ? mirrored[i] : i];
        point = {region.centre.x + c * u - s * v, region.centre.y + s * u + c * v, values[2] * scale};
        sum += point.x + point.y + point.z;
    }
    out.confidence = std::isfinite(sum) ? *mModel.output(1) : 0.0F;
    return true;
}

FaceRegion FaceMesh::regionOf(const FaceDetection& face) {
    const Vec2f& left = face.points[FaceDetection::LeftEye];
    const Vec2f& right = face.points[FaceDetection::RightEye];
    return {face.centre, std::max(face.size.x, face.size.y) * kAroundBox,
            directionOf(right.x - left.x, right.y - left.y)};
}

FaceRegion FaceMesh::regionOf(const FaceMeshPoints& mesh) {
    const Vec3f& left = mesh.points[face_point::kLeftEyeOuter];
    const Vec3f& right = mesh.points[face_point::kRightEyeOuter];
    const float angle = directionOf(right.x - left.x, right.y - left.y);
    const float c = std::cos(angle), s = std::sin(angle);
    constexpr float kFar = std::numeric_limits<float>::max();
    FaceArea box{kFar, kFar, -kFar, -kFar};  // in axes turned with the face
    for (const Vec3f& point : mesh.points) {
        const float along = c * point.x + s * point.y, down = c * point.y - s * point.x;
        box = {std::min(box.left, along), std::min(box.top, down), std::max(box.right, along),
               std::max(box.bottom, down)};
    }
    const float along = (box.left + box.right) / 2.0F, down = (box.top + box.bottom) / 2.0F;
    return {{c * along - s * down, s * along + c * down},
            std::max(box.width(), box.height()) * kAroundBox,
            angle};
}

}  // namespace zv
