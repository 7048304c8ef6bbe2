// What Microsoft's C runtime declares and MinGW's headers do not, for tools/check-msvc.sh.
#pragma once
#define _strtof_l(text, end, locale) static_cast<float>(_strtod_l((text), (end), (locale)))
#define _strtold_l(text, end, locale) static_cast<long double>(_strtod_l((text), (end), (locale)))
