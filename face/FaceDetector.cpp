#include "face/FaceDetector.h"

#include <algorithm>
#include <cmath>

namespace zv {

namespace {

constexpr const char* kNearFile = "zv_res/models/blazeface_front.onnx";
constexpr const char* kFarFiles[2] = {"zv_res/models/blazeface_back_1.onnx",
                                      "zv_res/models/blazeface_back_2.onnx"};
constexpr int kNearSize = 128;
constexpr int kFarSize = 256;
constexpr float kLeastLogit = 0.40547F;  // a score of 0.6
constexpr float kSameFace = 0.3F;        // overlap from which on two boxes are one face
constexpr std::size_t kMostCandidates = 256;
constexpr int kBoxValues = 16;  // centre, size, six points

/// The two grids of anchors, in the order of the outputs.
struct Grid {
    int cells;
    int anchors;  // in each cell
};
constexpr Grid kGrids[2] = {{16, 2}, {8, 6}};

float scoreOf(float logit) {
    return 1.0F / (1.0F + std::exp(-std::clamp(logit, -80.0F, 80.0F)));
}

void addWeighted(FaceDetection& sum, const FaceDetection& one, float weight) {
    sum.centre = {sum.centre.x + weight * one.centre.x, sum.centre.y + weight * one.centre.y};
    sum.size = {sum.size.x + weight * one.size.x, sum.size.y + weight * one.size.y};
    for (int i = 0; i < FaceDetection::Points; ++i) {
        sum.points[i] = {sum.points[i].x + weight * one.points[i].x,
                         sum.points[i].y + weight * one.points[i].y};
    }
}

}  // namespace

float overlapOf(const FaceDetection& a, const FaceDetection& b) {
    const auto along = [](float centreA, float sizeA, float centreB, float sizeB) {
        return std::max(std::min(centreA + sizeA / 2.0F, centreB + sizeB / 2.0F) -
                            std::max(centreA - sizeA / 2.0F, centreB - sizeB / 2.0F),
                        0.0F);
    };
    const float both =
        along(a.centre.x, a.size.x, b.centre.x, b.size.x) * along(a.centre.y, a.size.y, b.centre.y, b.size.y);
    const float either = a.size.x * a.size.y + b.size.x * b.size.y - both;
    return either > 0.0F ? both / either : 0.0F;
}

bool FaceDetector::load() {
    const bool isNear = mRange == Range::Near;
    mSize = isNear ? kNearSize : kFarSize;
    mParts = mNextPart = 0;
    mCandidates.reserve(kMostCandidates);
    mBoxes.reserve(kMostCandidates);
    mTaken.reserve(kMostCandidates);
    const FaceModel::Tensor input{"input", {1, 3, mSize, mSize}};
    const FaceModel::Tensor between{"t141", {1, 24, 128, 128}};
    const std::vector<FaceModel::Tensor> outputs{{"Identity", {1, 512, 1}},
                                                 {"Identity_1", {1, 384, 1}},
                                                 {"Identity_2", {1, 512, kBoxValues}},
                                                 {"Identity_3", {1, 384, kBoxValues}}};
    const bool isLoaded = isNear ? mModels[0].load(kNearFile, input, outputs)
                                 : mModels[0].load(kFarFiles[0], input, {between}) &&
                                       mModels[1].load(kFarFiles[1], between, outputs);
    if (isLoaded && !isNear) {
        mModels[1].readFrom(mModels[0]);
    }
    mParts = mNextPart = isLoaded ? (isNear ? 1 : 2) : 0;
    return isLoaded;
}

void FaceDetector::detect(const FaceImage& image, const FaceRegion& square,
                          std::vector<FaceDetection>& found) {
    begin(image, square);
    while (!proceed(found)) {
    }
}

void FaceDetector::begin(const FaceImage& image, const FaceRegion& square) {
    if (mParts > 0) {
        sampleRegion(image, square, mSize, FaceBorder::Black, 1.0F / 127.5F, -1.0F, mModels[0].input());
        mSquare = square;
        mNextPart = 0;
    }
}

bool FaceDetector::proceed(std::vector<FaceDetection>& found) {
    if (mNextPart >= mParts) {
        return true;
    }
    FaceModel& model = mModels[mNextPart++];
    if (!model.run()) {
        mNextPart = mParts;
        return true;
    }
    if (mNextPart < mParts) {
        return false;
    }
    collect(model);
    merge(found);
    return true;
}

/// Keeps the anchors that see a face, the best first.
void FaceDetector::collect(const FaceModel& model) {
    mCandidates.clear();
    for (std::size_t g = 0; g < 2; ++g) {
        const Grid& grid = kGrids[g];
        const float* scores = model.output(g);
        const float* boxes = model.output(g + 2);
        const int count = grid.cells * grid.cells * grid.anchors;
        for (int i = 0; i < count && mCandidates.size() < kMostCandidates; ++i) {
            if (!(scores[i] > kLeastLogit)) {
                continue;
            }
            const int cell = i / grid.anchors;
            const auto cells = static_cast<float>(grid.cells);
            const Vec2f centre((static_cast<float>(cell % grid.cells) + 0.5F) / cells,
                               (static_cast<float>(cell / grid.cells) + 0.5F) / cells);
            mCandidates.push_back({centre, scores[i], boxes + static_cast<std::ptrdiff_t>(i) * kBoxValues});
        }
    }
    std::sort(mCandidates.begin(), mCandidates.end(),
              [](const Anchor& a, const Anchor& b) { return a.logit > b.logit; });
}

/// In parts of the square.
FaceDetection FaceDetector::decode(const Anchor& anchor) const {
    const float scale = 1.0F / static_cast<float>(mSize);
    FaceDetection face;
    face.score = scoreOf(anchor.logit);
    face.centre = {anchor.centre.x + anchor.box[0] * scale, anchor.centre.y + anchor.box[1] * scale};
    face.size = {anchor.box[2] * scale, anchor.box[3] * scale};
    for (int i = 0; i < FaceDetection::Points; ++i) {
        const float* offset = anchor.box + 4 + 2 * i;
        face.points[i] = {anchor.centre.x + offset[0] * scale, anchor.centre.y + offset[1] * scale};
    }
    return face;
}

void FaceDetector::merge(std::vector<FaceDetection>& found) {
    mBoxes.clear();
    for (const Anchor& anchor : mCandidates) {
        mBoxes.push_back(decode(anchor));
    }
    mTaken.assign(mBoxes.size(), 0);
    for (std::size_t i = 0; i < mBoxes.size(); ++i) {
        if (mTaken[i] != 0) {
            continue;
        }
        FaceDetection sum;
        float weights = 0.0F;
        for (std::size_t j = i; j < mBoxes.size(); ++j) {
            if (mTaken[j] == 0 && (j == i || overlapOf(mBoxes[i], mBoxes[j]) > kSameFace)) {
                mTaken[j] = 1;
                addWeighted(sum, mBoxes[j], mBoxes[j].score);
                weights += mBoxes[j].score;
            }
        }
        FaceDetection face;
        addWeighted(face, sum, mSquare.side / weights);
        const float left = mSquare.centre.x - mSquare.side / 2.0F,
                    top = mSquare.centre.y - mSquare.side / 2.0F;
        face.score = mBoxes[i].score;
        face.centre = {face.centre.x + left, face.centre.y + top};
        for (Vec2f& point : face.points) {
            point = {point.x + left, point.y + top};
        }
        if (face.size.x > 0.0F && face.size.y > 0.0F && std::isfinite(face.centre.x + face.centre.y)) {
            found.push_back(face);
        }
    }
}

}  // namespace zv
