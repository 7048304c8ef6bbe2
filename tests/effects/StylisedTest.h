#pragma once

#include "BeautyTest.h"
#include "core/RefCreate.h"
#include "effects/Effect70SNode.h"
#include "effects/GraffitiNode.h"
#include "effects/JitterNode.h"
#include "effects/SoulstuffNode.h"

namespace zv::test {

/// A stylised effect that counts its animation steps.
template <class Node>
struct Counted : Node {
    static RenderTexture* make(const Size16& size, int* steps) {
        return createRef<Counted>([&](Counted& node) {
            node.mSteps = steps;
            return node.init(size, nullptr, PXFORMAT_RGBA8888);
        });
    }

protected:
    void updateAnimationParams() override {
        ++*mSteps;
        Node::updateAnimationParams();
    }

private:
    int* mSteps = nullptr;
};

struct StylisedLook {
    const char* name;
    RenderTexture* (*make)(const Size16& size, int* steps);
    int cycle;
    std::size_t calls;        ///< most GL calls that drawing one frame takes
    std::size_t legacyCalls;  ///< the same without vertex arrays
};

inline const StylisedLook kLooks[] = {{"70s", Counted<Effect70SNode>::make, 100, 10, 15},
                                      {"Graffiti", Counted<GraffitiNode>::make, 140, 16, 160},
                                      {"Jitter", Counted<JitterNode>::make, 15, 10, 15},
                                      {"SoulStuff", Counted<SoulstuffNode>::make, 17, 10, 15}};

/// One effect between an input and an RGBA output.
class StylisedTest : public BeautyTest {
protected:
    void startLook(const StylisedLook& look, const Picture& picture) {
        start(makeSprite(picture), sizeOf(picture));
        stage = look.make(sizeOf(picture), &steps);
        chain->add(stage, true, false);
    }
    Picture next() {
        frame();
        return output();
    }

    RenderTexture* stage = nullptr;
    int steps = 0;
};

}  // namespace zv::test
