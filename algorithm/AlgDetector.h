#pragma once

namespace kel_algorithm {

/// What a host plugs into a business: it supplies the results for the current frame. The host derives from
/// this, knows by itself where the frame's pixels are, and hands an instance to the business.
template <class Results>
class AlgDetector {
public:
    virtual ~AlgDetector() = default;

    /// Called once a frame, on the engine's thread, before anything is drawn, and only while somebody is
    /// registered. Write the results of this frame into the argument: it holds lists of earlier frames, whose
    /// memory may be reused where the size fits (UniqueDataPtr::resize() always reallocates). Everything in
    /// it is delivered, so empty what this frame does not have: an empty list says that nothing was found.
    /// @return false when there is no result for this frame; then nothing is delivered.
    virtual bool detect(Results& results) = 0;
};

}  // namespace kel_algorithm
