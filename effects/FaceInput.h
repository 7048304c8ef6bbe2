#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "algorithm/AlgTypes.h"

namespace kel_algorithm {
struct AlgBizFunc;
}

namespace zv {

/// The faces that an effect works on. They come from the face business of the media engine that is current
/// when they are first wanted, or from the host. Only while they are wanted is the effect subscribed: the
/// detector rests when nobody needs it.
class FaceInput {
public:
    static constexpr std::size_t kMostFaces = 16;  ///< further ones are left alone

    FaceInput() = default;
    FaceInput(const FaceInput&) = delete;
    FaceInput& operator=(const FaceInput&) = delete;
    ~FaceInput();

    /// Subscribes or takes the subscription back; without a media engine it is tried again with the next
    /// call.
    void want(bool wanted);

    /// Takes the faces of the latest frame. What the argument holds afterwards is memory to use again.
    void take(kel_algorithm::AlgLandmarksList& faces);

    std::size_t count() const;
    const kel_algorithm::AlgFaceLandmarks& operator[](std::size_t index) const { return mFaces[index]; }
    /// Counts the lists that were taken and differed from the one before.
    std::uint64_t stamp() const { return mStamp; }

private:
    void unsubscribe();

    kel_algorithm::AlgLandmarksList mFaces;
    std::shared_ptr<kel_algorithm::AlgBizFunc> mSubscription;
    std::uint64_t mStamp = 0;
    bool mFromBusiness = false;
};

}  // namespace zv
