#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <utility>

#include "core/UniqueDataPtr.h"

namespace zv {

/// What a whole-file read fills, so that text and bytes share one reader.
class ResizableBuffer {
public:
    virtual ~ResizableBuffer() = default;
    /// Makes room for n bytes of any value; false when there is no memory.
    virtual bool resize(std::size_t n) = 0;
    /// Keeps the first n bytes.
    virtual void shrink(std::size_t n) = 0;
    virtual unsigned char* data() = 0;
};

class ResizableText final : public ResizableBuffer {
public:
    bool resize(std::size_t n) override {
        try {
            mText.resize(n);
        } catch (const std::exception&) {
            return false;
        }
        return true;
    }
    void shrink(std::size_t n) override { mText.resize(n); }
    unsigned char* data() override { return reinterpret_cast<unsigned char*>(&mText[0]); }
    std::string take() { return std::move(mText); }

private:
    std::string mText;
};

class ResizableBytes final : public ResizableBuffer {
public:
    bool resize(std::size_t n) override {
        mBytes.resize(n);
        return mBytes.size() == n;
    }
    void shrink(std::size_t n) override { mBytes.reset(mBytes.get(0), n); }
    unsigned char* data() override { return mBytes.get(0); }
    UniqueDataPtr<unsigned char> take() { return std::move(mBytes); }

private:
    UniqueDataPtr<unsigned char> mBytes;
};

}  // namespace zv
