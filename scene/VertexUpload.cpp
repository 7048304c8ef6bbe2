#include "scene/VertexUpload.h"

#include <GL/glew.h>

#include <cstdint>

#include "gl/ConfigGL.h"
#include "gl/DebugLabel.h"
#include "gl/RenderState.h"

namespace zv {

VertexUpload& VertexUpload::operator=(const VertexUpload&) {
    mDirty = true;  // the names stay: they are this object's own, only what lies in the buffer is old
    return *this;
}

VertexUpload::~VertexUpload() {
    if (mVertexBuffer != 0) {
        glDeleteBuffers(1, &mVertexBuffer);
    }
    if (mVertexArray != 0) {
        glDeleteVertexArrays(1, &mVertexArray);
    }
}

void VertexUpload::bind(RenderState& state, const void* vertices, std::size_t bytes, int stride,
                        Layout layout, const char* label) {
    const bool first = mVertexBuffer == 0;
    const bool hasVertexArrays = ConfigGL::getInstance()->supportVAO();
    if (first) {
        mVertexArray = state.genAndBindVao();
        mVertexBuffer = state.genAndBindVbo(GL_ARRAY_BUFFER);
    } else if (hasVertexArrays) {
        state.bindVao(mVertexArray);
    } else {
        state.bindVbo(GL_ARRAY_BUFFER, mVertexBuffer);
    }
    if (mDirty) {
        state.bufferData(mVertexBuffer, GL_ARRAY_BUFFER, static_cast<std::int64_t>(bytes), vertices,
                         GL_STATIC_DRAW);
        mDirty = false;
    }
    if (first) {
        setDebugLabel(GL_BUFFER, mVertexBuffer, label);
    }
    if (first || !hasVertexArrays) {
        for (const VertexMember& member : layout) {
            state.vertexAttribPointer(
                member.index, member.components, member.type, member.normalized ? GL_TRUE : GL_FALSE, stride,
                reinterpret_cast<const void*>(member.offset));  // NOLINT(performance-no-int-to-ptr)
        }
    }
}

void VertexUpload::unbind(RenderState& state, Layout layout) {
    if (!ConfigGL::getInstance()->supportVAO()) {
        // Left enabled, they would point into this buffer after it is gone.
        for (const VertexMember& member : layout) {
            glDisableVertexAttribArray(static_cast<GLuint>(member.index));
        }
    }
    state.unBindVaoVbo();
}

}  // namespace zv
