// Videos through zvfx, as a user sees them: which frames come out, of which size, and what is said when they
// do not.
#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "apps/RunProgram.h"

namespace zv::test {

namespace {

struct Clip {
    int width = 0;
    int height = 0;
    bool full = false;  ///< 4:4:4
    std::string header;
    std::vector<std::string> frames;  ///< tight planes

    int chromaWidth() const { return full ? width : (width + 1) / 2; }
    std::size_t lumaBytes() const { return static_cast<std::size_t>(width * height); }
    std::size_t frameBytes() const {
        return lumaBytes() + 2 * static_cast<std::size_t>(chromaWidth() * (full ? height : (height + 1) / 2));
    }
    std::string file() const {
        std::string bytes = header;
        for (const std::string& frame : frames) {
            bytes += "FRAME\n" + frame;
        }
        return bytes;
    }
};

std::string headerOf(int width, int height, bool full, const std::string& more = "") {
    return "YUV4MPEG2 W" + std::to_string(width) + " H" + std::to_string(height) + " F30000:1001 Ip A1:1 " +
           (full ? "C444" : "C420jpeg") + more + "\n";
}

/// Frames that carry their number in eight bars of luma, and in chroma.
Clip numbered(int count, int width, int height, bool full) {
    Clip clip{width, height, full, headerOf(width, height, full), {}};
    for (int n = 0; n < count; ++n) {
        std::string frame(clip.frameBytes(), static_cast<char>(100 + n % 50));
        for (int i = 0; i < width * height; ++i) {
            frame[static_cast<std::size_t>(i)] = (n >> (i % width * 8 / width) & 1) != 0 ? '\x90' : '\x40';
        }
        clip.frames.push_back(frame);
    }
    return clip;
}

std::vector<int> numbersOf(const Clip& clip) {
    std::vector<int> numbers;
    for (const std::string& frame : clip.frames) {
        int number = 0;
        for (int bit = 0; bit < 8; ++bit) {
            const int x = (2 * bit + 1) * clip.width / 16;
            const auto at = static_cast<std::size_t>(clip.height / 2 * clip.width + x);
            number |= static_cast<unsigned char>(frame[at]) > 0x68 ? 1 << bit : 0;
        }
        const int chroma = static_cast<unsigned char>(frame.back());
        numbers.push_back(std::abs(chroma - 100 - number % 50) <= 2 ? number : -chroma);
    }
    return numbers;
}

/// Takes a Y4M stream with bare frame headers apart; a rest that is no whole frame fails.
Clip parse(const std::string& bytes, int width, int height, bool full) {
    Clip clip{width, height, full, bytes.substr(0, bytes.find('\n') + 1), {}};
    std::size_t at = clip.header.size();
    while (at + 6 + clip.frameBytes() <= bytes.size() && bytes.compare(at, 6, "FRAME\n") == 0) {
        clip.frames.push_back(bytes.substr(at + 6, clip.frameBytes()));
        at += 6 + clip.frameBytes();
    }
    EXPECT_EQ(at, bytes.size()) << "what is left is no frame";
    return clip;
}

std::vector<int> upTo(int count) {
    std::vector<int> numbers;
    for (int i = 0; i < count; ++i) {
        numbers.push_back(i);
    }
    return numbers;
}

/// Runs zvfx behind a shell's pipe; Wine's shell has none, so there a file is its input.
ProgramResult pipeInto(const std::string& file, const std::vector<std::string>& arguments) {
#if defined(_WIN32)
    return runZvfx(arguments, {}, "<\"" + file + "\" ");
#else
    return runZvfx(arguments, {}, "cat '" + file + "' | ");
#endif
}

}  // namespace

TEST(ZvfxVideo, EveryFrameComesOutOnceInItsOrder) {
    const TempDir folder;
    for (const int count : {1, 2, 3, 60}) {
        for (const bool full : {false, true}) {
            const Clip clip = numbered(count, 64, 18, full);
            folder.write("in.y4m", clip.file());
            const ProgramResult result = pipeInto(folder.file("in.y4m"), {"-", "-o", "-", "--hsv", "1,1,0.98",
                                                                          "--stats", folder.file("s.json")});
            ASSERT_EQ(result.status, 0) << result.error;
            EXPECT_EQ(result.error, "");
            const auto stats = nlohmann::json::parse(readFile(folder.file("s.json")), nullptr, false);
            EXPECT_EQ(stats.value("frames", 0), count);
#if !defined(_WIN32)
            const int calls = stats.value("gl_calls_per_frame", 0);
            EXPECT_TRUE(count < 60 || (calls > 40 && calls < 200)) << calls;
#endif
            const Clip out = parse(result.output, 64, 18, full);
            EXPECT_EQ(out.header, clip.header);
            EXPECT_EQ(numbersOf(out), upTo(count)) << full;
        }
    }
}

struct SizeCase {
    int width;
    int height;
    bool full;
    const char* matrix;
    const char* gl;
};

TEST(ZvfxVideo, PlanesAreTightAndHoldWhatWentInAtAnySize) {
    const TempDir folder;
    for (const SizeCase& row :
         {SizeCase{1, 1, false, "601", "core"}, SizeCase{1, 1, true, "601", "core"},
          SizeCase{2, 2, false, "709", "core"}, SizeCase{3, 5, false, "601-full", "core"},
          SizeCase{6, 3, false, "601", "core"}, SizeCase{7, 7, true, "709", "core"},
          SizeCase{130, 73, false, "709", "core"}, SizeCase{131, 72, false, "601-full", "compat"},
          SizeCase{129, 71, true, "601-full", "compat"}}) {
        SCOPED_TRACE(std::to_string(row.width) + " x " + std::to_string(row.height) + " " + row.matrix);
        // Luma climbs to the right and down, so that a shift of a column, a row or a plane shows.
        Clip clip{row.width, row.height, row.full, headerOf(row.width, row.height, row.full), {}};
        clip.frames.emplace_back(clip.frameBytes(), '\x7A');
        for (int y = 0; y < row.height; ++y) {
            for (int x = 0; x < row.width; ++x) {
                clip.frames[0][static_cast<std::size_t>(y * row.width + x)] =
                    static_cast<char>(30 + (x * 5 + y * 11) % 190);
            }
        }
        clip.frames[0].back() = '\x80';
        folder.write("in.y4m", clip.file());
        for (const std::string name : {"out.y4m", "out.yuv"}) {
            if (name == "out.yuv" && row.width % 2 == 0) {
                continue;
            }
            const ProgramResult result = runZvfx({folder.file("in.y4m"), "-o", folder.file(name), "--hsv",
                                                  "1,1,1", "--matrix", row.matrix, "--gl", row.gl});
            ASSERT_EQ(result.status, 0) << result.error;
            const bool raw = name == "out.yuv";
            Clip out{row.width, row.height, row.full && !raw, "", {readFile(folder.file(name))}};
            if (!raw) {
                out = parse(out.frames[0], row.width, row.height, row.full);
            }
            ASSERT_EQ(out.frames.at(0).size(), out.frameBytes());
            int worst = 0;
            for (std::size_t i = 0; i < (raw && row.full ? out.lumaBytes() : out.frameBytes()); ++i) {
                worst = std::max(worst, std::abs(static_cast<unsigned char>(out.frames[0][i]) -
                                                 static_cast<unsigned char>(clip.frames[0][i])));
            }
            // 8 bits of RGB in between, and the matrices' three decimals; luma never leaves them.
            EXPECT_LE(worst, 3) << name;
        }
    }
}

TEST(ZvfxVideo, NothingAskedForGivesTheSameBytes) {
    const TempDir folder;
    const std::string file =
        "YUV4MPEG2 W3 H1 F24000:1001 I? A59:54 C420paldv XYSCSS=420PALDV XCOLORRANGE=FULL\n"
        "FRAME Xa Xb\n1234567FRAME\nabcdefg";
    folder.write("in.y4m", file);
    const ProgramResult piped = pipeInto(folder.file("in.y4m"), {"-", "-o", "-"});
    EXPECT_EQ(piped.status, 0) << piped.error;
    EXPECT_EQ(piped.output, file);
    // Of a parameter that comes twice the last one counts, for whoever reads what comes out as well.
    folder.write("in.y4m", "YUV4MPEG2 W9 H1 C444 XCOLORRANGE=FULL W3 C420jpeg F25:1\nFRAME\n1234567");
    EXPECT_EQ(runZvfx({folder.file("in.y4m"), "-o", "-"}).output,
              "YUV4MPEG2 H1 XCOLORRANGE=FULL W3 C420jpeg F25:1\nFRAME\n1234567");
}

TEST(ZvfxVideo, APictureBecomesAVideoInTheMatrixAskedFor) {
    const TempDir folder;
    ASSERT_TRUE(Picture(5, 3, {255, 0, 0, 255}).save(folder.file("red.png")));
    for (const auto& [matrix, yuv, range] :
         {std::tuple("601", std::array{81, 90, 240}, ""),
          std::tuple("601-full", std::array{76, 85, 255}, " XCOLORRANGE=FULL"),
          std::tuple("709", std::array{63, 102, 240}, "")}) {
        const ProgramResult result = runZvfx(
            {folder.file("red.png"), "-o", "-", "--frames", "3", "--fps", "12.5", "--matrix", matrix});
        ASSERT_EQ(result.status, 0) << result.error;
        const Clip out = parse(result.output, 5, 3, false);
        EXPECT_EQ(out.header, std::string("YUV4MPEG2 W5 H3 F25:2 Ip A0:0 C420jpeg") + range + "\n");
        ASSERT_EQ(out.frames.size(), 3u);
        for (std::size_t i = 0; i < out.frameBytes(); ++i) {
            const std::size_t plane = i < 15 ? 0 : i < 21 ? 1 : 2;
            EXPECT_NEAR(static_cast<unsigned char>(out.frames[2][i]), yuv[plane], 1) << matrix << " " << i;
        }
    }
}

TEST(ZvfxVideo, WhatCannotBeReadIsSaidInOneLineAndLeavesNoFile) {
    const TempDir folder;
    const std::string good = numbered(3, 16, 4, false).file();
    const std::pair<std::string, const char*> rows[] = {
        {"", "is empty"},
        {"RIFF", "is no Y4M video"},
        {"YUV4MPEG2 W4 H4 It C420\n", "is interlaced (It)"},
        {"YUV4MPEG2 W4 H4 Cmono\n", "has no colours (Cmono)"},
        {"YUV4MPEG2 W4 H4 C420p10\n", "more than 8 bits a sample (C420p10)"},
        {"YUV4MPEG2 W4 H4 C422\n", "chroma of another kind (C422)"},
        {"YUV4MPEG2 W4 H-4\n", "the parameter \"H-4\""},
        {"YUV4MPEG2 W4\n", "this one is 4 x 0"},
        {"YUV4MPEG2 W65535 H65535\n", "256 MiB a frame"},
        {"YUV4MPEG2 W99999999999 H4\n", "makes no sense"},
        {"YUV4MPEG2 W4 H4\n", "holds no frame"},
        {good.substr(0, good.size() - 1), "ends in the middle of frame 3"},
        {good + "FRAMES\n", "no frame header where frame 4 should begin"},
    };
    for (const auto& [bytes, message] : rows) {
        folder.write("in.y4m", bytes);
        std::vector<std::string> arguments = {folder.file("in.y4m"), "-o", folder.file("out.y4m")};
        if (bytes.size() > 100) {
            arguments.insert(arguments.end(), {"--hsv", "1,1,0.9"});
        }
        const ProgramResult result = runZvfx(arguments);
        EXPECT_EQ(result.status, 1) << message;
        EXPECT_TRUE(result.saysOneLine()) << result.error;
        EXPECT_NE(result.error.find(message), std::string::npos) << result.error;
        EXPECT_EQ(folder.entries(), std::vector<std::string>{"in.y4m"});
    }
}

#if defined(__linux__)
TEST(ZvfxVideo, AnInterruptLeavesAWholeFileOfTheFramesDone) {
    const TempDir folder;
    const Clip clip = numbered(12, 256, 64, false);
    folder.write("in.y4m", clip.file());
    // The pipe stays open behind the last frame; the signal comes once eight frames are in the file.
    const std::string part = "'" + folder.path() + "'/out.y4m.part-*";
    const ProgramResult result = runZvfx(
        {folder.file("in.y4m"), folder.file("out.y4m"), std::to_string(8 * clip.frameBytes())}, {},
        "run() { mkfifo pipe$$; (cat \"$2\"; exec sleep 20) >pipe$$ & feeder=$!; "
        "\"$1\" - -o \"$3\" --hsv 1,1,0.98 <pipe$$ & program=$!; "
        "until [ \"$(cat " +
            part +
            " 2>/dev/null | wc -c)\" -gt \"$4\" ]; do sleep 0.05; done; "
            "kill -TERM $program; wait $program; status=$?; kill $feeder; rm pipe*; return $status; }; cd '" +
            folder.path() + "'; run ");
    EXPECT_EQ(result.status, 130);
    EXPECT_TRUE(result.saysOneLine()) << result.error;
    EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.y4m", "out.y4m"}));
    const Clip out = parse(readFile(folder.file("out.y4m")), 256, 64, false);
    EXPECT_EQ(numbersOf(out), upTo(12)) << "all that was decoded is written";
}
#endif

#if !defined(_WIN32)
namespace {

/// What a command prints.
std::string printed(const std::string& command) {
    const TempDir folder;
    const int status = std::system((command + " >'" + folder.file("out") + "' 2>/dev/null").c_str());
    return status == 0 ? readFile(folder.file("out")) : "failed: " + command;
}

}  // namespace

TEST(ZvfxVideo, AVideoFileKeepsItsTimesSoundColoursAndRotation) {
    const TempDir folder;
    if (runZvfx({folder.file("none.mkv"), "-o", folder.file("out.mkv")}).status == 2) {
        GTEST_SKIP() << "zvfx was built without FFmpeg";
    }
    if (std::system("ffmpeg -version >/dev/null 2>&1 && ffprobe -version >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "the programs ffmpeg and ffprobe are not there";
    }
    // 41 frames at uneven times, with B-frames, sound that begins later, and a rotation.
    const std::string make =
        "ffmpeg -v error -f lavfi -i testsrc=s=130x74:r=25:d=1.64 -itsoffset 0.2 -f lavfi -i sine=d=1.2 -vf "
        "hue=s=0.2,settb=1/90000,setpts='(N+floor(N/3))*3003' -vsync passthrough -enc_time_base 1/90000 "
        "-video_track_timescale 90000 "
        "-pix_fmt yuv420p -colorspace bt709 -color_range tv -c:a aac -y '" +
        folder.file("a.mp4") + "' && ffmpeg -v error -i '" + folder.file("a.mp4") +
        "' -c copy -metadata:s:v rotate=90 -metadata title=T -y '" + folder.file("in.mp4") + "'";
    ASSERT_EQ(std::system(make.c_str()), 0);
    const auto probe = [&](const char* file, const char* what) {
        return printed("ffprobe -v error -of csv " + std::string(what) + " '" + folder.file(file) + "'");
    };
    ASSERT_EQ(runZvfx({folder.file("in.mp4"), "-o", folder.file("out.mp4"), "--hsv", "1,1,1"}).error, "");
    for (const char* what :
         {"-select_streams v -show_entries frame=pts_time", "-show_entries format_tags=title",
          "-select_streams a -show_data_hash md5 -show_entries packet=pts_time,data_hash",
          "-select_streams v -show_entries stream=color_range,color_space,r_frame_rate",
          "-select_streams v -show_entries stream_side_data=rotation"}) {
        const std::string expected = probe("in.mp4", what);
        EXPECT_EQ(probe("out.mp4", what), expected) << what;
        EXPECT_GT(expected.size(), 6u) << what;
    }
    // Every frame shows what it showed: the way in, the matrix, the way out.
    const std::string both = "(ffmpeg -v info -i '" + folder.file("in.mp4") + "' -i '" +
                             folder.file("out.mp4") + "' -lavfi psnr -f null - 2>&1)";
    const std::string report = printed(both);
    const std::size_t at = report.find("min:");
    ASSERT_NE(at, std::string::npos) << report;
    EXPECT_GT(std::atof(report.c_str() + at + 4), 38) << "dB of the worst frame, the encoder's loss included";
    // Uneven sizes and kinds of pictures that have to be converted.
    for (const std::string kind : {"yuv422p10le -c:v ffv1", "nv12 -c:v rawvideo"}) {
        ASSERT_EQ(std::system(("ffmpeg -v error -f lavfi -i testsrc=s=33x17:d=0.2 -pix_fmt " + kind +
                               " -y '" + folder.file("other.nut") + "'")
                                  .c_str()),
                  0);
        const ProgramResult odd = runZvfx({folder.file("other.nut"), "-o", "-", "--hsv", "1,1,1"});
        EXPECT_EQ(odd.error, "");
        EXPECT_EQ(parse(odd.output, 33, 17, false).frames.size(), 5u) << kind;
    }
    // The kind of container that does not say what it takes, and pictures that change their kind on the way.
    EXPECT_EQ(runZvfx({folder.file("in.mp4"), "-o", folder.file("out.ts")}).error, "");
    const std::string jpeg = "ffmpeg -v error -f lavfi -i testsrc=s=64x32:d=0.2 -f mjpeg -pix_fmt yuvj";
    ASSERT_EQ(
        std::system(
            ("(" + jpeg + "444p - && " + jpeg + "420p -) >'" + folder.file("mixed.mjpeg") + "'").c_str()),
        0);
    const ProgramResult mixed = runZvfx({folder.file("mixed.mjpeg"), "-o", folder.file("mixed.y4m")});
    EXPECT_NE(mixed.error.find("changes its size or kind of pictures at frame 6"), std::string::npos)
        << mixed.error;
}
#endif

}  // namespace zv::test
