#pragma once
// Whether bytes read from a member are text a person reads: no NUL, and
// hardly any control bytes besides the usual layout ones and ESC (colours).
#include <cstddef>

bool LooksLikeText(const char* data, size_t size);
