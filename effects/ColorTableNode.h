#pragma once

#include <string>

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/PxFormat.h"
#include "scene/RefHolder.h"
#include "scene/RenderTexture.h"

namespace zv {

class Program;

/// What the effects with a colour table in slot 1 have in common: loading it, and showing the picture as it
/// is while the slot is empty.
///
/// A colour table is a picture file that holds an output colour for each of n x n x n input colours, n = 64
/// (a picture of 512 x 512) or n = 16 (64 x 64). It is a square of tiles of n x n, one for each level of
/// blue, in reading order; in a tile red rises to the right and green with the stored rows:
///     x = r + n * (b mod t)      y = g + n * floor(b / t)      with t = 8 tiles in a row (4 for n = 16)
/// Level i of n stands for the value i / (n - 1); colours between levels are interpolated in all three.
class ZV_API ColorTableNode : public RenderTexture {
public:
    ColorTableNode();
    ~ColorTableNode() override;

    /// Without a table in slot 1 the unit would still show what another node bound there, so the picture is
    /// then drawn with the plain texture program. The effect's own program stays the node's.
    void onDrawSelf(const Mat4& matrix) override;

protected:
    using RenderTexture::init;
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;

    /// The program that looks colours up, of ZvShaderTexturePosition.vert and this fragment file.
    void setTableProgram(const char* fragmentFile);

    /// Puts a picture file into slot 1, without coordinates of its own. False, with the slot as it was, when
    /// it does not load.
    bool loadTable(const std::string& path);

private:
    RefHolder<Program> mPlainProgram;
};

}  // namespace zv
