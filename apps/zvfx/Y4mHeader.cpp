#include "zvfx/Y4mHeader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace zvfx {

namespace {

constexpr std::array<std::string_view, 4> k420Variants = {"420", "420jpeg", "420mpeg2", "420paldv"};
constexpr std::string_view kSingleParameters = "WHFIAC";
constexpr std::string_view kRangeTag = "XCOLORRANGE=";
constexpr std::string_view kFullRange = "XCOLORRANGE=FULL";
constexpr std::string_view kLimitedRange = "XCOLORRANGE=LIMITED";

bool takeNumber(std::string_view& text, std::int64_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || number < 0 || number > std::numeric_limits<int>::max()) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

bool parseSide(std::string_view text, int& side) {
    std::int64_t number = 0;
    if (!takeNumber(text, number) || !text.empty()) {
        return false;
    }
    side = static_cast<int>(number);
    return true;
}

bool parseRatio(std::string_view text, Ratio& ratio) {
    Ratio read;
    if (!takeNumber(text, read.numerator) || text.empty() || text.front() != ':') {
        return false;
    }
    text.remove_prefix(1);
    if (!takeNumber(text, read.denominator) || !text.empty()) {
        return false;
    }
    ratio = read;
    return true;
}

std::string parseChroma(std::string_view kind, VideoFormat& format) {
    if (std::find(k420Variants.begin(), k420Variants.end(), kind) != k420Variants.end()) {
        format.chroma = Chroma::C420;
        format.leftSited = kind == "420mpeg2";
        return {};
    }
    if (kind == "444") {
        format.chroma = Chroma::C444;
        return {};
    }
    const std::string tag = "C" + std::string(kind);
    if (kind.find('p') != std::string_view::npos && kind.back() >= '0' && kind.back() <= '9') {
        return "has more than 8 bits a sample (" + tag + "), which zvfx does not take";
    }
    return (kind.substr(0, 4) == "mono" ? "has no colours (" : "has chroma of another kind (") + tag +
           "); zvfx takes C420, C420jpeg, C420mpeg2, C420paldv and C444";
}

std::string parseParameter(std::string_view text, VideoFormat& format) {
    const std::string_view value = text.substr(1);
    Ratio ratio;
    bool good = true;
    switch (text.front()) {
        case 'W':
            good = parseSide(value, format.width);
            break;
        case 'H':
            good = parseSide(value, format.height);
            break;
        case 'F':
            good = parseRatio(value, ratio);
            // 0:0 says that it is not known.
            if (good && ratio.numerator > 0 && ratio.denominator > 0) {
                format.rate = ratio;
            }
            break;
        case 'A':
            good = parseRatio(value, format.aspect);
            break;
        case 'I':
            if (value != "p" && value != "?") {
                return "is interlaced (I" + std::string(value) + "); zvfx takes progressive video";
            }
            break;
        case 'C':
            return parseChroma(value, format);
        case 'X':
            if (text.substr(0, kRangeTag.size()) == kRangeTag) {
                format.matrix = text == kFullRange ? Matrix::Bt601Full : Matrix::Bt601;
            }
            break;
        default:
            break;
    }
    return good ? std::string() : "has the parameter \"" + std::string(text) + "\", which makes no sense";
}

std::string ratioText(const Ratio& ratio) {
    return std::to_string(ratio.numerator) + ":" + std::to_string(ratio.denominator);
}

/// Puts a parameter in the place of the one that begins so, or behind all others.
void put(std::vector<std::string>& parameters, std::string_view beginning, std::string parameter) {
    const auto at = std::find_if(parameters.begin(), parameters.end(), [&](const std::string& text) {
        return text.compare(0, beginning.size(), beginning) == 0;
    });
    if (at != parameters.end()) {
        *at = std::move(parameter);
    } else {
        parameters.push_back(std::move(parameter));
    }
}

const char* chromaTag(const VideoFormat& format) {
    return format.chroma == Chroma::C444 ? "C444" : format.leftSited ? "C420mpeg2" : "C420jpeg";
}

/// What comes last counts. What it takes the place of is dropped, so that the header cannot be read otherwise
/// when it is written again.
void keepLast(std::vector<std::string>& parameters, std::string_view parameter) {
    const bool range = parameter.substr(0, kRangeTag.size()) == kRangeTag;
    if (range ||
        (!parameter.empty() && kSingleParameters.find(parameter.front()) != std::string_view::npos)) {
        const std::string_view beginning = range ? kRangeTag : parameter.substr(0, 1);
        parameters.erase(std::remove_if(parameters.begin(), parameters.end(),
                                        [&](const std::string& text) {
                                            return text.compare(0, beginning.size(), beginning) == 0;
                                        }),
                         parameters.end());
    }
    parameters.emplace_back(parameter);
}

/// Whether the parameters say 4:4:4; nothing said is 4:2:0.
bool saysFullChroma(const std::vector<std::string>& parameters) {
    return std::find(parameters.begin(), parameters.end(), "C444") != parameters.end();
}

bool saysFullRange(const std::vector<std::string>& parameters) {
    return std::find(parameters.begin(), parameters.end(), kFullRange) != parameters.end();
}

}  // namespace

std::string parseY4mHeader(std::string_view line, VideoFormat& format) {
    if (line.substr(0, kY4mMagic.size()) != kY4mMagic) {
        return "is no Y4M video";
    }
    line.remove_prefix(kY4mMagic.size());
    if (!line.empty() && line.front() != ' ') {
        return "is no Y4M video";
    }
    // Blanks one after another keep their number, so that the header can be written as it was.
    while (!line.empty()) {
        line.remove_prefix(1);
        const std::string_view parameter = line.substr(0, line.find(' '));
        line.remove_prefix(parameter.size());
        keepLast(format.y4m, parameter);
        std::string wrong = parameter.empty() ? std::string() : parseParameter(parameter, format);
        if (!wrong.empty()) {
            return wrong;
        }
    }
    format.timeBase = {format.rate.denominator, format.rate.numerator};
    return format.sizeInsideLimits() ? std::string() : format.sizeComplaint();
}

std::string makeY4mHeader(const VideoFormat& format) {
    std::vector<std::string> parameters = format.y4m;
    put(parameters, "W", "W" + std::to_string(format.width));
    put(parameters, "H", "H" + std::to_string(format.height));
    if (format.y4m.empty()) {
        parameters.push_back("F" + ratioText(format.rate));
        parameters.emplace_back("Ip");
        parameters.push_back("A" + ratioText(format.aspect.denominator != 0 ? format.aspect : Ratio{0, 0}));
        parameters.emplace_back(chromaTag(format));
    } else if (saysFullChroma(parameters) != (format.chroma == Chroma::C444)) {
        put(parameters, "C", chromaTag(format));
    }
    const bool full = format.matrix == Matrix::Bt601Full;
    if (saysFullRange(parameters) != full) {
        put(parameters, kRangeTag, std::string(full ? kFullRange : kLimitedRange));
    }
    std::string header(kY4mMagic);
    for (const std::string& parameter : parameters) {
        header += " " + parameter;
    }
    return header + "\n";
}

}  // namespace zvfx
