#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "algorithm/AlgKelNN.h"
#include "core/Mat4.h"
#include "core/TVec.h"

namespace zvfx {

/// Where the faces of a clip are, read from a file with one line of JSON a frame:
///
///     {"size": [512, 512], "faces": [[[16 numbers], ...one a bone], ...one a face]}
///
/// A matrix takes model units to pixels of a view port with the origin bottom left, column by column. "size"
/// is the view port that the pixels belong to, for this line and those after it; without one they are taken
/// as they are. Blank lines are left out.
class FaceTrack {
public:
    using Face = std::vector<zv::Mat4>;
    using Frame = std::vector<Face>;

    /// Reads the file for a view port of that size: pixels of another size are scaled to it.
    /// @return what is wrong, with the number of the line, or nothing
    std::string load(const std::string& path, const zv::Size16& viewPort);
    /// The same from a stream. What is wrong begins with a colon or a comma, for a name to stand before it.
    std::string read(std::istream& lines, const zv::Size16& viewPort);

    /// Never empty after load().
    const std::vector<Frame>& frames() const { return mFrames; }

private:
    std::vector<Frame> mFrames;
};

/// Stands in for a face detector: gives out a frame of the track each time that the engine asks, which is
/// once a frame, and goes on with the last one.
class FaceTrackDetector : public kel_algorithm::AlgKelNN::Detector {
public:
    explicit FaceTrackDetector(FaceTrack track) : mTrack(std::move(track)) {}
    bool detect(kel_algorithm::AlgFaceResults& results) override;

private:
    FaceTrack mTrack;
    std::size_t mNext = 0;
};

}  // namespace zvfx
