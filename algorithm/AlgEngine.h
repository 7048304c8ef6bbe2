#pragma once

#include <array>
#include <cstddef>
#include <memory>

#include "algorithm/AlgBizFunc.h"
#include "core/ZVExport.h"

namespace kel_algorithm {

class AlgBizBase;
class AlgFace3D;
class AlgKelNN;

/// The registry through which consumers of results (stickers, face effects) subscribe to businesses. It has
/// five slots: 0 the face business, 3 the face 3D business, both made when somebody first asks for them; 1, 2
/// and 4 are the host's. Everything happens on the rendering thread and may be called from inside a callback.
class ZV_API AlgEngine {
public:
    static constexpr std::size_t kSlots = 5;

    AlgEngine();
    AlgEngine(const AlgEngine&) = delete;
    AlgEngine& operator=(const AlgEngine&) = delete;
    ~AlgEngine();

    /// Makes the face business for types 0 to 3 and the face 3D business for types 0 and 4 where they do not
    /// exist, then registers with the business in the first filled slot that supports the type. Dropped
    /// silently when none does, or when the subscription is null.
    void registerAlgFunc(const std::shared_ptr<AlgBizFunc>& func);

    /// Drops every subscription of that owner, whatever the business.
    void unregisterFunc(void* owner);

    /// Fills (or with null empties) one of the host's slots: 1, 2 or 4. The business is initialised here
    /// unless it was before; subscriptions of the business that it replaces go with that one.
    /// Registration goes to the first filled slot that supports the type. A business that supports type 4, as
    /// goods and cover scoring do, therefore belongs in slot 4: in slot 1 or 2 it takes the subscriptions
    /// meant for the face 3D business. In slot 4 it stands behind that business, so its own consumers
    /// register with it directly, through AlgBizBase::registerAlgFunc().
    /// @return false, with nothing changed, for another slot and when the business fails to initialise.
    bool setBiz(std::size_t slot, const std::shared_ptr<AlgBizBase>& biz);

    /// Null for an empty slot and beyond the last one.
    AlgBizBase* getBiz(std::size_t slot) const;

    /// The business in slot 0, made by the first call: where a host plugs in its face detector.
    AlgKelNN* getKelNN();
    /// The business in slot 3, made by the first call: where a host plugs in its face 3D detector.
    AlgFace3D* getFace3D();

    /// Runs every business that has subscriptions, in the order of the slots.
    void run();

private:
    std::array<std::shared_ptr<AlgBizBase>, kSlots> mBiz;
};

}  // namespace kel_algorithm
