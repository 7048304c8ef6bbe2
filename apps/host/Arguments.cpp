#include "host/Arguments.h"

#if defined(_WIN32)
#include <windows.h>
// windows.h first.
#include <shellapi.h>

#include "core/FileUtilWindows.h"
#endif

namespace zv::host {

Arguments::Arguments(int argc, char** argv) {
#if defined(_WIN32)
    int count = 0;
    if (wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
        for (int i = 0; i < count; ++i) {
            mTexts.push_back(StringWideCharToUtf8(wide[i]));
        }
        LocalFree(static_cast<HLOCAL>(wide));
    }
#endif
    if (mTexts.empty()) {
        mTexts.assign(argv, argv + argc);
    }
    for (const std::string& text : mTexts) {
        mValues.push_back(text.c_str());
    }
}

}  // namespace zv::host
