#include "gltf/GtSticker.h"

#include <algorithm>
#include <utility>

#include "algorithm/AlgBizFunc.h"
#include "algorithm/AlgEngine.h"
#include "core/FileUtil.h"
#include "core/RefCreate.h"
#include "core/ZVLog.h"
#include "gl/Program.h"
#include "gltf/GtJson.h"
#include "scene/UpdatePass.h"
#include "scene/ZVMediaEngine.h"

namespace zv::gltf {

namespace {

/// Null also while a plain engine is current, or a media engine that is being destroyed.
kel_algorithm::AlgEngine* currentAlgEngine() {
    auto* media = dynamic_cast<ZVMediaEngine*>(ZVEngine::getCurrent());
    return media ? media->getAlgEngine() : nullptr;
}

std::string withSlash(const std::string& folder) {
    return !folder.empty() && folder.back() == '/' ? folder : folder + "/";
}

int locationOf(Program& program, const char* name) {
    const Uniform* uniform = program.getUniform(name);
    return uniform ? uniform->location : -1;
}

}  // namespace

GtSticker::GtSticker() {
    setBlendFunc(BlendFunc::ALPHA_NON_PREMULTIPLIED);
}

GtSticker::~GtSticker() {
    unsubscribe();
    clearAllResources();
    for (Program* program : {mProgram.program, mSkeletalProgram.program}) {
        if (program) {
            program->release();
        }
    }
}

GtSticker* GtSticker::create(const std::string& folder) {
    return createRef<GtSticker>([&](GtSticker& sticker) { return sticker.init(folder); });
}

GtSticker* GtSticker::create(const std::string& folder, const std::string& gltfFile) {
    return createRef<GtSticker>([&](GtSticker& sticker) { return sticker.init(folder, gltfFile); });
}

bool GtSticker::init(const std::string& folder) {
    clearAllResources();
    std::string path = withSlash(folder);
    std::string gltfPath;
    if (!parserJson(path, gltfPath)) {
        zvLog("no sticker: %ssticker.json cannot be read or names no type and model", path.c_str());
        return false;
    }
    return loadModel(path, gltfPath);
}

bool GtSticker::init(const std::string& folder, const std::string& gltfFile) {
    clearAllResources();
    unsubscribe();
    mType.clear();
    const std::string path = withSlash(folder);
    mLabel = path;
    return loadModel(path, path + gltfFile);
}

bool GtSticker::loadModel(const std::string& folder, const std::string& gltfPath) {
    mTime = 0.0F;
    if (!mModel.parser(folder, gltfPath)) {
        zvLog("no sticker: the model %s or a buffer of it cannot be read", gltfPath.c_str());
        return false;
    }
    return loadModelResources();
}

bool GtSticker::parserJson(std::string& folder, std::string& gltfPath) {
    folder = withSlash(folder);
    FileUtil* files = FileUtil::getInstance();
    const std::string text = files ? files->getTextFromFile(folder + "sticker.json") : std::string();
    rapidjson::Document document;
    if (text.size() > GtModel::MAX_TEXT_BYTES || !json::parse(text, document)) {
        return false;
    }
    const json::Value* res = json::find(&document, "res");
    std::string type;
    std::string model;
    if (!json::read(res, "type", type) || !json::read(res, "g", model)) {
        return false;
    }
    mLabel = folder;
    if (!json::read(&document, "id", mLabel)) {
        json::read(&document, "name", mLabel);
    }
    mType = type;
    unsubscribe();
    if (isFaceSticker()) {
        subscribe();
    }
    gltfPath = folder + model;
    return true;
}

void GtSticker::subscribe() {
    kel_algorithm::AlgEngine* algorithms = currentAlgEngine();
    if (!algorithms) {
        return;
    }
    mSubscription = std::make_shared<kel_algorithm::AlgBizFunc>();
    mSubscription->owner = this;
    mSubscription->type = kel_algorithm::ALG_FUNC_FACE_MATS;
    mSubscription->onFaceMats = [this](kel_algorithm::AlgFaceMatsList& mats) { updateFaceDetectMats(mats); };
    algorithms->registerAlgFunc(mSubscription);
}

void GtSticker::unsubscribe() {
    if (!mSubscription) {
        return;
    }
    // The engine that holds the subscription may be gone, or not be the current one: without a callable the
    // record reaches nobody.
    mSubscription->onFaceMats = nullptr;
    mSubscription.reset();
    if (kel_algorithm::AlgEngine* algorithms = currentAlgEngine()) {
        algorithms->unregisterFunc(this);
    }
}

Program* GtSticker::getUseProgram() {
    return useProgram().program;
}

GtSticker::UsedProgram& GtSticker::useProgram() {
    const bool isFace = isFaceSticker();
    UsedProgram& used = isFace ? mSkeletalProgram : mProgram;
    if (!used.program) {
        used.program =
            Program::createWithFile(isFace ? "ZvSkeletalTexture2D.vert" : "ZvTexturePositionMVP.vert",
                                    "ZvShaderTexturePosition.frag");
        if (used.program) {
            used.program->retain();
            used.mvp = locationOf(*used.program, "u_mvp");
            used.bones = locationOf(*used.program, "u_BoneList");
        }
    }
    return used;
}

unsigned int GtSticker::getVao(unsigned int key) const {
    const auto found = mVaos.find(key);
    return found != mVaos.end() ? found->second : 0;
}

void GtSticker::updateFaceDetectMats(UniqueDataPtr<UniqueDataPtr<Mat4>>& mats) {
    std::swap(mFaceMats, mats);
}

void GtSticker::onUpdateSelf(float dt) {
    const UpdatePass pass;
    if (!pass.enter(mUpdateStamp)) {
        return;
    }
    mTime = std::max(0.0F, mTime + dt);  // in this order a dt that is no number starts anew
    for (auto& entry : mAniNodes) {
        entry.second = GtAniNode();
    }
    for (std::size_t i = 0; i < mModel.extAnimations.size(); ++i) {
        mModel.getExtAniChannal(mTime, static_cast<int>(i), mAniNodes);
    }
}

}  // namespace zv::gltf
