#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "core/PoolMgr.h"
#include "core/RefPool.h"
#include "gl/RenderState.h"
#include "host/HeadlessContext.h"

namespace zv::test {

/// A test that draws. One context serves the whole process; its kind is told by the environment variable
/// ZV_TEST_GL (core, compat or legacy; core when unset). Each test has a fresh pool manager and render state,
/// found through the library's look-ups, starts from plain GL state, and fails when it leaves a GL error
/// pending.
class GLTest : public ::testing::Test {
public:
    using Kind = host::HeadlessContext::Kind;

    /// The kind that ZV_TEST_GL asks for.
    static Kind kind();
    /// The process-wide context, made on first use; null when this machine cannot make one.
    static const std::shared_ptr<host::HeadlessContext>& context();

protected:
    void SetUp() override;
    void TearDown() override;

    /// Releases what the test autoreleased so far.
    void drainPool() { mPools->getCurPool()->clear(); }
    RenderState* renderState() const { return mRenderState.get(); }

    /// Makes the context current and resets bindings, view port, blending and pixel store to GL's defaults;
    /// answers false (and fails the test) without a context.
    bool prepareContext();

private:
    std::unique_ptr<PoolMgr> mPools;
    std::unique_ptr<RenderState> mRenderState;
};

}  // namespace zv::test
