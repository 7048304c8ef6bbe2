// Feeds zvfx's command line, one argument a line, and holds what is accepted to its ranges.
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "zvfx/Options.h"

namespace {

using zvfx::Options;

bool isWithin(const std::optional<float>& value, float most) {
    return !value || (*value >= 0 && *value <= most);
}

bool isSound(const Options& options) {
    if (options.size && (options.size->width < 1 || options.size->width > 65535 || options.size->height < 1 ||
                         options.size->height > 65535)) {
        return false;
    }
    if (options.hsv) {
        for (const float factor : {options.hsv->hue, options.hsv->saturation, options.hsv->value}) {
            if (!std::isfinite(factor) || factor < 0) {
                return false;
            }
        }
    }
    return isWithin(options.smooth, 1) && isWithin(options.sharpen, 2) && isWithin(options.whiten, 1) &&
           (!options.lut || (!options.lut->file.empty() && isWithin(options.lut->amount, 1))) &&
           options.frames > 0 && options.frames <= 1000000 && options.fps > 0 && options.fps <= 1000 &&
           (options.input == "-" || options.input.front() == '/') &&
           (options.output == "-" || options.output.front() == '/');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    std::vector<std::string> words{"zvfx"};
    for (std::size_t at = 0; at < size;) {
        std::string word;
        for (; at < size && data[at] != '\n' && data[at] != 0; ++at) {
            word += static_cast<char>(data[at]);
        }
        words.push_back(word);
        ++at;
    }
    std::vector<const char*> arguments;
    for (const std::string& word : words) {
        arguments.push_back(word.c_str());
    }
    Options options;
    const zvfx::ParseResult result =
        zvfx::parseOptions(static_cast<int>(arguments.size()), arguments.data(), options);
    const bool refused = !result.run && result.status == 2 && result.message.rfind("zvfx: ", 0) == 0 &&
                         result.message.find('\n') == std::string::npos;
    const bool answered = !result.run && result.status == 0 && !result.message.empty();
    if (!refused && !answered && !(result.run && isSound(options))) {
        std::abort();
    }
    return 0;
}
