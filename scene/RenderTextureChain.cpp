#include "scene/RenderTextureChain.h"

#include <algorithm>

#include "core/RefCreate.h"
#include "scene/RenderTexture.h"
#include "scene/Scene.h"
#include "scene/UpdatePass.h"

namespace zv {

RenderTextureChain* RenderTextureChain::create(const TVec<2, unsigned short>& size,
                                               FrameBuffer* frameBuffer) {
    return createRef<RenderTextureChain>([&](RenderTextureChain& c) { return c.init(size, frameBuffer); });
}

RenderTextureChain::RenderTextureChain() = default;

RenderTextureChain::RenderTextureChain(const RenderTextureChain& other)
    : Ref(other),
      IFrameBuffer(other),
      mInput(other.mInput),
      mOutput(other.mOutput),
      mLinked(other.mLinked),
      mLinkNode(other.mLinkNode),
      mEntries(other.mEntries),
      mSize(other.mSize),
      mNeedsSetup(other.mNeedsSetup) {
    for (Entry& entry : mEntries) {
        entry.owned = false;
    }
}

RenderTextureChain& RenderTextureChain::operator=(const RenderTextureChain& other) {
    if (this == &other) {
        return *this;
    }
    Entries former = other.mEntries;
    former.swap(mEntries);
    for (Entry& entry : mEntries) {
        // A reference that this chain has already stays with it.
        const auto kept = std::find_if(former.begin(), former.end(),
                                       [&](const Entry& f) { return f.owned && f.member == entry.member; });
        entry.owned = kept != former.end();
        if (entry.owned) {
            kept->owned = false;
        }
    }
    Ref::operator=(other);
    IFrameBuffer::operator=(other);
    mInput = other.mInput;
    mOutput = other.mOutput;
    mLinked = other.mLinked;
    mLinkNode = other.mLinkNode;
    mSize = other.mSize;
    mNeedsSetup = other.mNeedsSetup;
    releaseAll(former);
    return *this;
}

RenderTextureChain::~RenderTextureChain() {
    clearAllRenderTexture();
}

bool RenderTextureChain::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer) {
    mSize = size;
    setFrameBuffer(frameBuffer);
    initNodes();
    return true;
}

void RenderTextureChain::initNodes() {}

void RenderTextureChain::onLeave(RenderTexture*) {}

void RenderTextureChain::update(float dt) {
    const UpdatePass pass;
    for (const Entry& entry : mEntries) {
        if (entry.enabled) {
            entry.member->update(dt);
        }
    }
}

void RenderTextureChain::render() {
    if (mNeedsSetup) {
        reAutoSetup();
    }
    for (const Entry& entry : mEntries) {
        if (entry.enabled) {
            entry.member->renderToTexture();
        }
    }
}

void RenderTextureChain::resetSize(const TVec<2, unsigned short>& size) {
    mSize = size;
    for (const Entry& entry : mEntries) {
        entry.member->resetSize(size);
        entry.member->fitViewPort();
    }
}

void RenderTextureChain::add(RenderTexture* member, bool enabled, bool autoSetup) {
    member->retain();
    mEntries.push_back({member, enabled, true});
    mNeedsSetup = true;
    if (autoSetup) {
        reAutoSetup();
    }
}

void RenderTextureChain::addArray(const std::vector<RenderTexture*>& members, bool autoSetup) {
    for (RenderTexture* member : members) {
        add(member, false, true);
    }
    mNeedsSetup = true;
    if (autoSetup) {
        reAutoSetup();
    }
}

bool RenderTextureChain::remove(RenderTexture* member, bool autoSetup) {
    const auto found = find(member);
    if (found == mEntries.end()) {
        return false;
    }
    const bool wasEnabled = found->enabled;
    mNeedsSetup = true;
    take(static_cast<std::size_t>(found - mEntries.begin()));
    if (wasEnabled && autoSetup) {
        reAutoSetup();
    }
    return true;
}

bool RenderTextureChain::removeByName(const std::string& name, bool autoSetup) {
    return remove(getByName(name), autoSetup);
}

std::uint64_t RenderTextureChain::removeRange(int minZ, int maxZ, bool autoSetup) {
    std::uint64_t removed = 0;
    for (std::size_t i = 0; i < mEntries.size();) {
        const int z = mEntries[i].member->getLocalZOrder();
        if (z >= minZ && z <= maxZ) {
            take(i);
            ++removed;
        } else {
            ++i;
        }
    }
    mNeedsSetup = true;
    if (autoSetup && removed > 0) {
        reAutoSetup();
    }
    return removed;
}

void RenderTextureChain::take(std::size_t index) {
    const Entry entry = mEntries[index];
    RenderTexture* member = entry.member;
    member->retain();  // until it is unlinked
    onLeave(member);
    mEntries.erase(mEntries.begin() + static_cast<std::ptrdiff_t>(index));
    member->removeFromParent();
    if (find(member) == mEntries.end()) {
        if (mOutput.get() == member) {
            mOutput.set(nullptr);
        }
        if (Scene* scene = member->getFrontScene()) {
            scene->removeAllChildren();
        }
    }
    if (entry.owned) {
        member->release();
    }
    member->release();
}

void RenderTextureChain::clearAllRenderTexture() {
    Entries former;
    for (const Entry& entry : mEntries) {
        onLeave(entry.member);
    }
    former.swap(mEntries);
    if (isIn(former, mOutput.get())) {
        mOutput.set(nullptr);
    }
    releaseAll(former);
}

void RenderTextureChain::removeUnusedRenderTexture() {
    while (!mEntries.empty() && !mEntries.back().enabled && mEntries.back().owned &&
           mEntries.back().member->getRefCount() == 1) {
        take(mEntries.size() - 1);
        mNeedsSetup = true;
    }
}

void RenderTextureChain::releaseAll(const Entries& entries) {
    for (const Entry& entry : entries) {
        if (entry.owned) {
            entry.member->release();
        }
    }
}

bool RenderTextureChain::isIn(const Entries& entries, const Node* member) {
    return std::any_of(entries.begin(), entries.end(), [=](const Entry& e) { return e.member == member; });
}

RenderTextureChain::Entries::const_iterator RenderTextureChain::find(const RenderTexture* member) const {
    return std::find_if(mEntries.begin(), mEntries.end(), [=](const Entry& e) { return e.member == member; });
}

RenderTexture* RenderTextureChain::getByName(const std::string& name) const {
    const HashString wanted(name);
    const auto found = std::find_if(mEntries.begin(), mEntries.end(),
                                    [&](const Entry& e) { return e.member->getName() == wanted; });
    return found != mEntries.end() ? found->member : nullptr;
}

bool RenderTextureChain::isRenderTextureEnable(const std::string& name) const {
    const HashString wanted(name);
    return std::any_of(mEntries.begin(), mEntries.end(),
                       [&](const Entry& e) { return e.enabled && e.member->getName() == wanted; });
}

bool RenderTextureChain::isRenderTextureEnable(const RenderTexture* member) const {
    return std::any_of(mEntries.begin(), mEntries.end(),
                       [=](const Entry& e) { return e.enabled && e.member == member; });
}

bool RenderTextureChain::setRenderTextureEnable(const std::string& name, bool enable, bool autoSetup) {
    return setRenderTextureEnable(getByName(name), enable, autoSetup);
}

bool RenderTextureChain::setRenderTextureEnable(RenderTexture* member, bool enable, bool autoSetup) {
    const auto found = find(member);
    if (found == mEntries.end() || found->enabled == enable) {
        return false;
    }
    mEntries[static_cast<std::size_t>(found - mEntries.begin())].enabled = enable;
    mNeedsSetup = true;
    if (autoSetup) {
        reAutoSetup();
    }
    return true;
}

std::uint64_t RenderTextureChain::getEnabledSize() const {
    return static_cast<std::uint64_t>(
        std::count_if(mEntries.begin(), mEntries.end(), [](const Entry& e) { return e.enabled; }));
}

RenderTexture* RenderTextureChain::getFirstEnableRenderTexture() const {
    const auto found =
        std::find_if(mEntries.begin(), mEntries.end(), [](const Entry& e) { return e.enabled; });
    return found != mEntries.end() ? found->member : nullptr;
}

RenderTexture* RenderTextureChain::getLastEnableRenderTexture() const {
    const auto found =
        std::find_if(mEntries.rbegin(), mEntries.rend(), [](const Entry& e) { return e.enabled; });
    return found != mEntries.rend() ? found->member : nullptr;
}

}  // namespace zv
