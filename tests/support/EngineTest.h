#pragma once

#include <memory>

#include "scene/ZVEngine.h"
#include "support/GLTest.h"

namespace zv::test {

/// A test with an engine of its own on the process-wide context. Pool manager and render state are the
/// engine's, the resource root is the source tree's. A test that makes another engine calls `engine.reset()`
/// first.
class EngineTest : public GLTest {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Drains the engine's current pool.
    void drainPool() { engine->getPoolMgr()->getCurPool()->clear(); }

    std::unique_ptr<ZVEngine> engine;
};

}  // namespace zv::test
