#pragma once

#include <cstdint>
#include <string>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "effects/ColorTableNode.h"

namespace zv {

/// Recolours the picture through a colour table (see ColorTableNode). The node draws its input into its own
/// target unchanged; the table acts when the node itself is drawn, by the next stage or on the screen.
/// - Input: what is in the front scene, any format, any orientation. Slot 1 holds the table, a picture of
///   512 x 512 or of 64 x 64; while it is empty the picture stays as it is.
/// - Output: the size it was made with, always RGB.
/// - Cost: one pass at full size, one target; 9 fetches a pixel.
/// - State: leaves its program in use; setImageDirection() also makes its program the one in use.
/// - Setters: see each.
class ZV_API ColorFilter : public ColorTableNode {
public:
    /// The layout of the tables that a filter made without one will be given. Every value but 1 is taken
    /// for 64.
    enum FilterType : std::int32_t { FILTER_TYPE_64 = 0, FILTER_TYPE_512 = 1 };

    ColorFilter() = default;

    /// The table's width chooses the layout, once for the filter's life: 512 pixels, or any other for 64.
    /// Null when the table does not load.
    /// @param frameBuffer retained; null for one of its own
    static ColorFilter* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                               const std::string& imagePath);
    /// Has no table until setFilterImage().
    /// @param frameBuffer retained; null for one of its own
    static ColorFilter* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                               FilterType type);

    /// Takes another table at once; one that does not load changes nothing and is not reported. The layout
    /// stays on purpose, whatever the picture's width: who changes between 64 and 512 makes a new filter, or
    /// gets wrong colours.
    void setFilterImage(const std::string& path);
    /// How much of the looked-up colour is mixed in, 0 (the picture) to 1 (the table), default 0.5. Sent as
    /// given with the next draw: other values extrapolate.
    void setIntensity(float intensity);
    float getIntensity() const { return mIntensity; }
    /// Which row of the table is stored first: false, the default, the top one, as in PNG files; true the
    /// bottom one, as in BMP files. Sent to GL at once, so the context must be current; not kept here.
    void setImageDirection(bool bottomRowFirst);

protected:
    using ColorTableNode::init;
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, const std::string& imagePath);
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, FilterType type);

private:
    void useLayout(bool large);

    float mIntensity = 0.5F;
};

}  // namespace zv
