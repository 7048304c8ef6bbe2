#include "zvfx/Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <string_view>

#include "effects/FaceShapeNode.h"
#include "zvfx/VideoFiles.h"

namespace zvfx {

namespace {

constexpr int kBadUsage = 2;
constexpr int kLargestSide = 65535;
constexpr int kMostFrames = 1000000;
constexpr double kMostFps = 1000;

constexpr const char* kDescription =
    "zvfx puts a picture or a video through Zorvik's effects.\n"
    "Without an effect the output's pixels equal the input's.\n";

constexpr const char* kExamples =
    "Examples:\n"
    "  zvfx photo.jpg -o photo.png                         convert, nothing else\n"
    "  zvfx photo.jpg -o small.png --size 640x360          scale\n"
    "  zvfx photo.png -o fair.png --smooth 0.6 --whiten 0.3\n"
    "                                                      natural beauty\n"
    "  zvfx photo.png -o film.png --lut film,0.8           a look, or a table of your own\n"
    "  zvfx clip.mp4 -o old.mp4 --effect 70s               an animated look: 70s, graffiti, jitter or soul\n"
    "  zvfx photo.png -o vivid.png --hsv 1,1.4,1           stronger colours\n"
    "  zvfx photo.png -o fun.png --sticker hat --sticker glasses --faces photo.jsonl\n"
    "                                                      stickers, on the faces of a track\n"
    "  zvfx photo.png -o wide.png --shape eyes=0.5 --face-smooth 0.6 --faces auto\n"
    "                                                      larger eyes, smoother faces\n"
    "  zvfx clip.mp4 -o fair.mp4 --smooth 0.6              a video; its sound comes along\n"
    "  ffmpeg -i clip.mp4 -f yuv4mpegpipe - | zvfx - -o - --lut film | ffplay -\n"
    "                                                      Y4M through pipes\n"
    "  zvfx photo.png -o clip.y4m --frames 100 --fps 30    a still video\n"
    "  zvfx photo.png -o out.png --frames 500 --stats s.json\n"
    "                                                      how fast is it here?\n"
    "\n"
    "Ctrl-C ends a video after the present frame; what is done so far is a whole file.\n"
    "\n"
    "Exit status: 0 done, 1 the work failed, 2 bad usage, 130 ended by Ctrl-C.";

/// Reads one number that ends where the text ends or a separator follows; the separator is taken away as
/// well.
template <class Number>
bool takeNumber(std::string_view& text, char separator, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (separator == '\0') {
        return text.empty();
    }
    if (text.empty() || text.front() != separator) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

std::string parseSize(std::string_view text, std::optional<Options::Size>& size) {
    Options::Size read{};
    std::string_view rest = text;
    if (!takeNumber(rest, 'x', read.width) || !takeNumber(rest, '\0', read.height)) {
        return "--size takes WIDTHxHEIGHT, for example 1280x720, not \"" + std::string(text) + "\"";
    }
    if (std::min(read.width, read.height) < 1 || std::max(read.width, read.height) > kLargestSide) {
        return "--size takes a width and a height from 1 to 65535, not \"" + std::string(text) + "\"";
    }
    size = read;
    return {};
}

std::string parseHsv(std::string_view text, std::optional<Options::Hsv>& hsv) {
    Options::Hsv read{};
    std::string_view rest = text;
    if (!takeNumber(rest, ',', read.hue) || !takeNumber(rest, ',', read.saturation) ||
        !takeNumber(rest, '\0', read.value)) {
        return "--hsv takes three factors HUE,SATURATION,VALUE, for example 1,1.2,1, not \"" +
               std::string(text) + "\"";
    }
    for (const float factor : {read.hue, read.saturation, read.value}) {
        if (!std::isfinite(factor) || factor < 0) {
            return "--hsv takes factors of 0 or more, not \"" + std::string(text) + "\"";
        }
    }
    hsv = read;
    return {};
}

std::string parseAmount(std::string_view text, const char* option, float most, std::optional<float>& amount) {
    float read{};
    std::string_view rest = text;
    if (!takeNumber(rest, '\0', read) || !(read >= 0) || !(read <= most)) {
        return std::string(option) + " takes a number from 0 to " + std::to_string(static_cast<int>(most)) +
               ", not \"" + std::string(text) + "\"";
    }
    amount = read;
    return {};
}

/// NAME=VALUE of each.
std::string parseShapes(const std::vector<std::string>& texts, std::vector<std::pair<int, float>>& shapes) {
    for (const std::string& text : texts) {
        const std::size_t equals = text.find('=');
        const int type = zv::FaceShapeNode::getTypeByName(text.substr(0, equals));
        std::string_view rest(text);
        rest.remove_prefix(equals == std::string::npos ? text.size() : equals + 1);
        float value{};
        if (type < 0 || !takeNumber(rest, '\0', value) || !(std::abs(value) <= 1)) {
            return "--shape takes eyes, slim, chin, short, nose, mouth or forehead with a number from -1 to "
                   "1, "
                   "for example eyes=0.5, not \"" +
                   text + "\"";
        }
        shapes.emplace_back(type, value);
    }
    return {};
}

/// FILE or FILE,AMOUNT: a comma belongs to the name unless a number follows it.
std::string parseLut(std::string_view text, std::optional<Options::Lut>& lut) {
    Options::Lut read{std::string(text), 1.0F};
    const std::size_t comma = text.rfind(',');
    if (comma != std::string_view::npos) {
        float number{};
        std::string_view rest = text.substr(comma + 1);
        if (takeNumber(rest, '\0', number)) {
            if (!(number >= 0) || !(number <= 1)) {
                return "--lut takes an amount from 0 to 1 behind the comma, not \"" + std::string(text) +
                       "\"";
            }
            read = {std::string(text.substr(0, comma)), number};
        }
    }
    if (read.file.empty()) {
        return "--lut takes the file of a colour table, or the name of a look";
    }
    lut = read;
    return {};
}

template <class Number>
std::string parseCount(std::string_view text, const char* option, Number most, Number& count) {
    Number read{};
    std::string_view rest = text;
    if (!takeNumber(rest, '\0', read) || !(read > 0) || !(read <= most)) {
        return std::string(option) + " takes a number above 0, at most " +
               std::to_string(static_cast<int>(most)) + ", not \"" + std::string(text) + "\"";
    }
    count = read;
    return {};
}

std::string parseMatrix(std::string_view text, std::optional<Matrix>& matrix) {
    for (const auto& [name, value] :
         {std::pair("601", Matrix::Bt601), std::pair("601-full", Matrix::Bt601Full),
          std::pair("709", Matrix::Bt709)}) {
        if (text == name) {
            matrix = value;
            return {};
        }
    }
    return "--matrix takes 601, 601-full or 709, not \"" + std::string(text) + "\"";
}

/// Whether input, output and what goes with pictures or videos alone belong together.
std::string checkNames(const Options& options, bool timed) {
    const FileKind in = inputKind(options.input);
    const FileKind out = outputKind(options.output);
    if (in == FileKind::Unknown) {
        return "the input \"" + options.input + "\" is of no known kind; " + supportedKinds();
    }
    if (out == FileKind::Unknown) {
        return "the output \"" + options.output + "\" is of no known kind; " + supportedKinds();
    }
    if (in != FileKind::Picture && out == FileKind::Picture) {
        return "a video goes to .y4m, .yuv, - or a video file, not to \"" + options.output + "\"";
    }
    if (in != FileKind::Picture && timed) {
        return "--frames and --fps are for a picture as the input";
    }
    if (out == FileKind::Picture && options.matrix) {
        return "--matrix is for videos";
    }
    return {};
}

void makeAbsolute(std::string& path) {
    std::error_code error;
    if (!path.empty() && path != "-") {
        const std::filesystem::path absolute =
            std::filesystem::absolute(std::filesystem::u8path(path), error);
        path = error ? path : absolute.u8string();
    }
}

bool isEffect(std::string_view name) {
    return name == "70s" || name == "graffiti" || name == "jitter" || name == "soul";
}

ParseResult badUsage(std::string message) {
    std::replace(message.begin(), message.end(), '\n', ' ');
    return {false, kBadUsage, "zvfx: " + message + " (zvfx --help shows how)"};
}

/// The texts of the options that are read here rather than by the parser.
struct Texts {
    std::string size;
    std::string smooth;
    std::string sharpen;
    std::string hsv;
    std::string whiten;
    std::string lut;
    std::string faceSmooth;
    std::vector<std::string> shapes;
    std::string matrix;
    std::string gl = "core";
    std::string frames;
    std::string fps;
};

/// The options that change the picture.
void declareEffects(CLI::App& app, Options& options, Texts& texts) {
    app.add_option("--size", texts.size, "size of the output in pixels (default: the input's)")
        ->type_name("WxH");
    app.add_option("--smooth", texts.smooth, "smooth skin: 0 (not at all) to 1; 0.6 looks natural")
        ->type_name("A");
    app.add_option("--sharpen", texts.sharpen, "sharpen what --smooth leaves: 0 to 2 (default 1)")
        ->type_name("S");
    app.add_option("--whiten", texts.whiten, "brighten skin: 0 (not at all) to 1; 0.3 looks natural")
        ->type_name("A");
    app.add_option(
           "--lut", texts.lut,
           "recolour with a table of 512 x 512 or 64 x 64 pixels, or with a look by its name, mixed in "
           "by A, 0 to 1 (default 1); the result is opaque")
        ->type_name("FILE[,A]");
    app.add_option("--hsv", texts.hsv, "multiply hue, saturation and value; 1,1,1 changes nothing")
        ->type_name("H,S,V");
    app.add_option("--face-smooth", texts.faceSmooth, "smooth faces only: 0 to 1; comes with --faces auto")
        ->type_name("A");
    app.add_option("--shape", texts.shapes,
                   "reshape faces by -1 to 1: eyes, slim, chin, short, nose, mouth, forehead; repeat it for "
                   "more; comes with --faces auto")
        ->type_name("NAME=V")
        ->allow_extra_args(false);
    app.add_option("--effect", options.effect,
                   "an animated look over all the others: 70s, graffiti, jitter or soul; --frames N tells "
                   "which frame of it a .png shows")
        ->type_name("NAME");
    app.add_option("--sticker", options.stickers,
                   "a sticker's folder, or one of glasses, hat, cat, confetti, frame; repeat it for more")
        ->type_name("DIR")
        ->allow_extra_args(false);
    app.add_option(
           "--faces", options.faces,
           "what face stickers follow: auto finds the faces (a file of that name is ./auto), else the "
           "face track, a line of JSON a frame, see docs/stickers.md")
        ->type_name("auto|FILE");
    app.add_flag("--debug-faces", options.debugFaces,
                 "draw the points, outlines and axes of the faces over everything else");
}

void declare(CLI::App& app, Options& options, Texts& texts) {
    app.footer(kExamples);
    // A path may begin with a slash.
    app.allow_windows_style_options(false);
    app.get_formatter()->label("REQUIRED", "");
    app.set_help_flag("-h,--help", "print this text");
    app.set_version_flag("--version", "zvfx " ZVFX_VERSION, "print the version");
    app.add_option(
           "INPUT", options.input,
           "a picture (.png, .bmp or .jpg), a .y4m video, - for Y4M on standard input, or a video file "
           "of any other kind")
        ->required()
        ->type_name("");
    app.add_option("-o,--output", options.output,
                   "where it goes: a .png picture, a .y4m or .yuv (raw I420) video, - for Y4M on standard "
                   "output, or a video file of the kind that its name says")
        ->required()
        ->type_name("OUTPUT");
    declareEffects(app, options, texts);
    app.add_option("--matrix", texts.matrix,
                   "how YUV is read and written: 601, 601-full or 709 (default: as the input says, else 601)")
        ->type_name("M");
    app.add_option("--res", options.resources, "the folder that holds zv_res (default: found by itself)")
        ->type_name("DIR");
    app.add_option("--gl", texts.gl, "kind of GL context: core (default) or compat")->type_name("KIND");
    app.add_option("--stats", options.stats,
                   "write counts and times as JSON, of the whole and of each effect")
        ->type_name("FILE");
    app.add_option("--frames", texts.frames,
                   "send a picture through N times (default 1); a video gets them all, a .png the last one")
        ->type_name("N");
    app.add_option("--fps", texts.fps,
                   "frames a second of a picture's video, and what effects see pass by (default 25)")
        ->type_name("F");
    app.add_flag("--quiet", options.quiet, "no progress bar");
}

/// Reads what the parser left as texts. @return what is wrong, or nothing
std::string interpret(const CLI::App& app, const Texts& texts, Options& options) {
    std::string wrong;
    const auto given = [&](const char* name) { return wrong.empty() && app.count(name) != 0; };
    if (given("--size")) {
        wrong = parseSize(texts.size, options.size);
    }
    if (given("--smooth")) {
        wrong = parseAmount(texts.smooth, "--smooth", 1.0F, options.smooth);
    }
    if (given("--sharpen")) {
        wrong = options.smooth ? parseAmount(texts.sharpen, "--sharpen", 2.0F, options.sharpen)
                               : "--sharpen works on what --smooth leaves: give --smooth as well";
    }
    if (given("--whiten")) {
        wrong = parseAmount(texts.whiten, "--whiten", 1.0F, options.whiten);
    }
    if (given("--lut")) {
        wrong = parseLut(texts.lut, options.lut);
    }
    if (given("--hsv")) {
        wrong = parseHsv(texts.hsv, options.hsv);
    }
    if (given("--face-smooth")) {
        wrong = parseAmount(texts.faceSmooth, "--face-smooth", 1.0F, options.faceSmooth);
    }
    if (given("--shape")) {
        wrong = parseShapes(texts.shapes, options.shapes);
    }
    if (wrong.empty() && options.needsFaces() && !options.findsFaces()) {
        wrong = "--shape and --face-smooth work on the faces that --faces auto finds: give it as well";
    }
    if (given("--matrix")) {
        wrong = parseMatrix(texts.matrix, options.matrix);
    }
    if (given("--effect") && !isEffect(options.effect)) {
        wrong = "--effect takes 70s, graffiti, jitter or soul, not \"" + options.effect + "\"";
    }
    if (given("--debug-faces") && !given("--faces")) {
        wrong = "--debug-faces draws the faces of a track or of --faces auto: give --faces";
    }
    if (given("--frames")) {
        wrong = parseCount(texts.frames, "--frames", kMostFrames, options.frames);
    }
    if (given("--fps")) {
        wrong = parseCount(texts.fps, "--fps", kMostFps, options.fps);
    }
    if (given("--gl") && texts.gl != "core" && texts.gl != "compat") {
        wrong = "--gl takes core or compat, not \"" + texts.gl + "\"";
    }
    options.core = texts.gl == "core";
    for (const auto& [name, text] :
         {std::pair("--res", &options.resources), std::pair("--stats", &options.stats),
          std::pair("--faces", &options.faces), std::pair("--output", &options.output),
          std::pair("INPUT", &options.input)}) {
        if (given(name) && text->empty()) {
            wrong = std::string(name) + " is empty";
        }
    }
    const bool timed = app.count("--frames") + app.count("--fps") != 0;
    return wrong.empty() ? checkNames(options, timed) : wrong;
}

}  // namespace

ParseResult parseOptions(int argc, const char* const* argv, Options& options) {
    CLI::App app(kDescription, "zvfx");
    Texts texts;
    try {
        declare(app, options, texts);
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return {false, 0, app.help()};
    } catch (const CLI::CallForVersion& version) {
        return {false, 0, version.what()};
    } catch (const CLI::Error& error) {
        return badUsage(error.what());
    }
    const std::string wrong = interpret(app, texts, options);
    if (!wrong.empty()) {
        return badUsage(wrong);
    }
    for (std::string* path : {&options.input, &options.output, &options.resources, &options.stats}) {
        makeAbsolute(*path);
    }
    if (!options.findsFaces()) {
        makeAbsolute(options.faces);
    }
    if (!options.stats.empty() && (options.stats == options.output || options.stats == options.input)) {
        return badUsage("--stats and the input or the output name the same file");
    }
    return {true, 0, {}};
}

}  // namespace zvfx
