#pragma once

#include <memory>

#include "face/FaceExport.h"

namespace zv {

class ZVMediaEngine;

/// Finds the faces in the frames of a media engine, for all who subscribe to its face business (106
/// landmarks, sticker matrices) and to its face 3D business (pose and dense mesh). It works only while
/// somebody is subscribed, and once a frame, however many are. The input is taken to fill the output's view
/// port, which is what it does unless the host places it otherwise.
class ZV_FACE_API FaceFinder {
public:
    enum class Mode {
        InStep,  ///< every frame gets its own result, and waits for it: for work that is not live
        Live  ///< nothing waits: results come from a thread of their own, at most two frames late while that
              ///< keeps up, and moved on by the faces' last velocity; of frames that come too fast the newest
              ///< is taken
    };
    struct Options {
        Mode mode = Mode::InStep;
        float framesPerSecond = 25.0F;  ///< in step, where no clock tells; more than 0
    };

    /// Loads the models from "zv_res/models/" and takes the place of the businesses' detectors. On the
    /// engine's thread.
    /// @return false, with the reason in the log and nothing changed, when the models or the runtime cannot
    /// be used
    static bool attach(ZVMediaEngine& engine, const Options& options);

    /// Takes the detectors of both businesses away, whosever they are. On the engine's thread with its GL
    /// context current. The engine does so itself when it is destroyed.
    static void detach(ZVMediaEngine& engine);
};

}  // namespace zv
