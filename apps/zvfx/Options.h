#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zvfx/VideoFrame.h"

namespace zvfx {

/// What the command line asks for.
struct Options {
    struct Size {
        int width;
        int height;
    };
    /// Factors of hue, saturation and value; none negative.
    struct Hsv {
        float hue;
        float saturation;
        float value;
    };
    /// A colour table and how much of it is mixed in, 0 to 1.
    struct Lut {
        std::string file;  ///< as given: a path, or the bare name of a look in zv_res/lookups
        float amount;
    };

    std::string input;   ///< absolute path, or "-" for Y4M on standard input
    std::string output;  ///< absolute path, or "-" for Y4M on standard output
    std::optional<Size> size;
    std::optional<float> smooth;   ///< skin smoothing, 0 to 1
    std::optional<float> sharpen;  ///< 0 to 2; comes with smoothing
    std::optional<Hsv> hsv;
    std::optional<float> whiten;  ///< 0 to 1
    std::optional<Lut> lut;
    std::optional<float> faceSmooth;            ///< smoothing of faces only, 0 to 1
    std::vector<std::pair<int, float>> shapes;  ///< what of a face is reshaped, a zv::FaceShapeType, and how
                                                ///< much, -1 to 1
    std::string effect;                         ///< 70s, graffiti, jitter or soul; empty: none
    std::vector<std::string> stickers;  ///< as given: folders, or bare names of those in zv_res/stickers
    std::string faces;                  ///< absolute path of the face track, or "auto"; empty: none
    bool debugFaces = false;            ///< whether the points and outlines of the faces are drawn
    std::optional<Matrix> matrix;       ///< how YUV is read and written; none: as the input says, else BT.601
    std::string resources;              ///< absolute path of the folder that holds zv_res; empty: look for it
    bool core = true;                   ///< a core profile context, or else a compatibility one
    std::string stats;                  ///< absolute path of the JSON file; empty: none
    int frames = 1;
    double fps = 25;
    bool quiet = false;

    bool toStandardOutput() const { return output == "-"; }
    bool findsFaces() const { return faces == "auto"; }
    bool changesPicture() const { return hasEffects() || !stickers.empty() || debugFaces; }
    bool needsFaces() const { return faceSmooth || !shapes.empty(); }
    bool hasEffects() const { return smooth || hsv || whiten || lut || needsFaces() || !effect.empty(); }
};

/// How parsing ended.
struct ParseResult {
    bool run = false;     ///< false: there is nothing to do but to end with `status`
    int status = 0;       ///< 0 after --help and --version, 2 after bad usage
    std::string message;  ///< what to print: help and version on standard output, bad usage on standard error
};

/// Reads the command line into `options`.
ParseResult parseOptions(int argc, const char* const* argv, Options& options);

}  // namespace zvfx
