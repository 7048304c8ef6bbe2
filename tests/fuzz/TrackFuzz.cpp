// Feeds zvfx's reader of face tracks and plays what it has read.
#include <cmath>
#include <cstdlib>
#include <memory>

#include "algorithm/AlgKelNN.h"
#include "core/imemstream.h"
#include "zvfx/FaceTrack.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    zv::imemstream lines(data, size);
    zvfx::FaceTrack track;
    if (!track.read(lines, {65535, 1}).empty()) {
        return 0;
    }
    const std::size_t frames = track.frames().size();
    zvfx::FaceTrackDetector detector(std::move(track));
    kel_algorithm::AlgFaceResults results;
    for (std::size_t i = 0; i <= frames; ++i) {
        detector.detect(results);
        for (std::size_t face = 0; face < results.mats.size(); ++face) {
            for (std::size_t bone = 0; bone < results.mats[face].size(); ++bone) {
                for (const float number : results.mats[face][bone].m) {
                    if (!std::isfinite(number)) {
                        std::abort();
                    }
                }
            }
        }
    }
    return 0;
}
