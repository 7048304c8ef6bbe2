// What Microsoft's C runtime declares and MinGW's headers do not, for tools/check-msvc.sh.
#pragma once
#define _strtof_l(text, end, locale) static_cast<float>(_strtod_l((text), (end), (locale)))
#define _strtold_l(text, end, locale) static_cast<long double>(_strtod_l((text), (end), (locale)))
// An annotation for Microsoft's static analysis, which the runtime of zorvik-face uses.
#define _Frees_ptr_opt_
