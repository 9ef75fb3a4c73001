#pragma once

#if defined(TESSALINE_SHARED) && defined(__GNUC__)
#define TESSALINE_API __attribute__((visibility("default")))
#else
#define TESSALINE_API
#endif
