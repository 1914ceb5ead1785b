// True in the checked build (AddressSanitizer and UndefinedBehaviorSanitizer),
// where a test may hold back a shape of input whose fault is known and not
// yet fixed; each such place names the shape.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
constexpr bool BUILD_VERIFIE = true;
#else
constexpr bool BUILD_VERIFIE = false;
#endif
