#pragma once

#include "core/TRect.h"
#include "core/ZVExport.h"
#include "scene/Node.h"

namespace zv {

/// A root that is drawn with a view port of its own: an engine has one, every render texture has one.
class ZV_API Scene : public Node {
public:
    Scene() = default;
    Scene(const Scene&) = default;  ///< borrows the children, as every copied node does
    Scene& operator=(const Scene&) = default;
    ~Scene() override;

    /// Autoreleased into the pool of the current engine; init() is not called.
    static Scene* create();

    void setViewPort(const TRect<short, unsigned short>& viewPort) { mViewPort = viewPort; }
    TRect<short, unsigned short> getViewPort() const { return mViewPort; }

    /// Draws the tree below this scene within its view port and restores the view port around it, if there is
    /// one. Needs a current engine.
    void render();

private:
    TRect<short, unsigned short> mViewPort;
};

}  // namespace zv
