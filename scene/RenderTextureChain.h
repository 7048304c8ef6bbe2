#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/Ref.h"
#include "core/TVec.h"
#include "core/ZVExport.h"
#include "scene/IFrameBuffer.h"
#include "scene/NodeWeakRef.h"

namespace zv {

class Node;
class RenderTexture;

/// Render textures strung into a pipeline, each with an enabled flag. The input node goes into the front
/// scene of the first enabled member, each enabled member into the front scene of the next one, and the last
/// one is the output, hung under the link node. Members are sorted by local Z order when the pipeline is
/// linked. A change of members or flags only marks the pipeline; it is linked at the next render(), or at
/// once where `autoSetup` is set. Only on the engine's thread with its GL context current.
class ZV_API RenderTextureChain : public Ref, public IFrameBuffer {
public:
    RenderTextureChain();
    /// A copy borrows members, input and frame buffer: it retains and releases none of them and must not
    /// outlive them. What is added to it later is its own.
    RenderTextureChain(const RenderTextureChain& other);
    RenderTextureChain& operator=(const RenderTextureChain& other);
    /// Releases the members and the input; they stay linked to one another.
    ~RenderTextureChain() override;

    /// Stores both and calls initNodes(); answers true.
    virtual bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer);
    /// Hook in which a derived chain makes and adds its members; empty here.
    virtual void initNodes();
    /// Updates the enabled members in list order, each once an UpdatePass.
    virtual void update(float dt);
    /// Retains the input and moves it into the front scene of the first enabled member, if there is one. The
    /// input before is released but stays where it is. The present input again changes nothing, also when it
    /// was detached meanwhile: call setNeedsSetup() then.
    virtual void setInputNode(Node* node);
    /// Links the pipeline if it needs that, then renders the enabled members in list order.
    virtual void render();
    /// Detaches every member and the input and links the enabled members anew, those behind a disabled one
    /// included. Call it after changing flags: reAutoSetup() leaves alone what has a parent and does not look
    /// past a disabled member. Without a link node the output stays without a parent.
    virtual void relinkAll();

    /// Autoreleased; null when init() fails.
    static RenderTextureChain* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer);

    /// Appends and retains. A member added twice has two entries and two references.
    void add(RenderTexture* member, bool enabled, bool autoSetup);
    /// Appends them disabled. The pipeline is linked after each one, whatever `autoSetup` says, which only
    /// asks for a last time; that is on purpose.
    void addArray(const std::vector<RenderTexture*>& members, bool autoSetup);
    /// Detaches, empties the front scene of and releases a member (its first entry). Links at once if it was
    /// enabled and `autoSetup` is set. False for null and for no member.
    bool remove(RenderTexture* member, bool autoSetup);
    /// remove() of the first member of that name.
    bool removeByName(const std::string& name, bool autoSetup);
    /// The same for all members whose local Z order is minZ to maxZ, both included. Answers how many.
    std::uint64_t removeRange(int minZ, int maxZ, bool autoSetup);
    /// Releases all members and forgets the output. They stay attached to their parents with their scenes as
    /// they are, and the pipeline is not marked.
    void clearAllRenderTexture();

    /// First member of that name, or null.
    RenderTexture* getByName(const std::string& name) const;
    bool isRenderTextureEnable(const std::string& name) const;
    bool isRenderTextureEnable(const RenderTexture* member) const;
    /// False when there is no such member or it has that flag already.
    bool setRenderTextureEnable(const std::string& name, bool enable, bool autoSetup);
    bool setRenderTextureEnable(RenderTexture* member, bool enable, bool autoSetup);

    std::uint64_t getRenderTextureSize() const { return mEntries.size(); }
    std::uint64_t getEnabledSize() const;
    /// Null when no member is enabled.
    RenderTexture* getFirstEnableRenderTexture() const;
    RenderTexture* getLastEnableRenderTexture() const;

    Node* getInputNode() const { return mInput.get(); }

    /// Takes the parent of `output` as the link node, none for null. Holds no reference to either.
    void setOutput(RenderTexture* output);
    /// The member shown under the link node; when none is known, the last enabled one, which it then is. Null
    /// once it has left the chain or is destroyed, if no other member is enabled.
    RenderTexture* getOutput();
    /// The node under which the output is hung. Not retained, and forgotten when it is destroyed.
    void setLinkNode(Node* node);
    /// What hangs under the link node, also after clearAllRenderTexture(); null when nothing does.
    Node* getLinked() const { return mLinked.get(); }

    /// Resizes every member, enabled or not, and fits the view port of its scene.
    void resetSize(const TVec<2, unsigned short>& size);
    TVec<2, unsigned short> getSize() const { return mSize; }

    /// Links what is not linked: sorts, hangs the last enabled member under the link node, then walks from
    /// the back, puts each member without a parent into the front scene of the one behind it, and stops at
    /// the first disabled one: members in front of that stay as they are. A member with a parent stays where
    /// it is. Last, an input without a parent goes to the first enabled member. Nothing while no member is
    /// enabled.
    void reAutoSetup();
    /// Makes the next render() link.
    void setNeedsSetup() { mNeedsSetup = true; }
    bool isNeedsSetup() const { return mNeedsSetup; }

protected:
    /// Stable, by local Z order; the flags play no part.
    void sortTextures();
    /// Drops entries from the back for as long as they are disabled and this chain alone keeps their member
    /// alive.
    void removeUnusedRenderTexture();

    /// Hook: `member` is about to lose an entry; it is still linked. Empty here.
    virtual void onLeave(RenderTexture* member);

private:
    struct Entry {
        RenderTexture* member;
        bool enabled;
        bool owned;  ///< false in a copied chain: no reference is held
    };
    using Entries = std::vector<Entry>;

    Entries::const_iterator find(const RenderTexture* member) const;
    void take(std::size_t index);
    static void releaseAll(const Entries& entries);
    static bool isIn(const Entries& entries, const Node* member);
    void linkMembers(bool pastDisabled);
    void hangOutput(RenderTexture& last);
    void linkInput();

    RefHolder<Node> mInput;
    NodeWeakRef mOutput;
    NodeWeakRef mLinked;  ///< what hangs under the link node; a member may have left the chain meanwhile
    NodeWeakRef mLinkNode;
    Entries mEntries;
    TVec<2, unsigned short> mSize;
    bool mNeedsSetup = false;
};

}  // namespace zv
