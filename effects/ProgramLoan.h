#pragma once

#include "gl/BlendFunc.h"
#include "gl/Program.h"
#include "scene/RefHolder.h"
#include "scene/Sprite.h"

namespace zv {

/// Draws a sprite of somebody else through other programs, without blending, for as long as it lives; then
/// the sprite has its own program and blending again. The sprite must outlive it.
class ProgramLoan {
public:
    ProgramLoan(Sprite& sprite, Program* program) : mSprite(sprite), mFormerBlend(sprite.getBlendFunc()) {
        mFormer.set(sprite.getProgram());
        sprite.setBlendFunc(BlendFunc::DISABLE);
        sprite.setProgram(program);
    }
    ~ProgramLoan() {
        mSprite.setProgram(mFormer.get());
        mSprite.setBlendFunc(mFormerBlend);
    }
    ProgramLoan(const ProgramLoan&) = delete;
    ProgramLoan& operator=(const ProgramLoan&) = delete;

    void change(Program* program) { mSprite.setProgram(program); }

private:
    Sprite& mSprite;
    RefHolder<Program> mFormer;
    BlendFunc mFormerBlend;
};

}  // namespace zv
