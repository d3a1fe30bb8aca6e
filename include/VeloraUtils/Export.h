// Export.h - the one place that decides how VeloraUtils symbols cross the library boundary.
// VELORA_API marks exported classes and functions; VELORA_C_API additionally gives the U_
// functions their unmangled C names.
#pragma once

#if defined(_WIN32)
#if defined(VELORA_STATIC)
#define VELORA_API
#elif defined(VELORA_BUILDING_LIBRARY)
#define VELORA_API __declspec(dllexport)
#else
#define VELORA_API __declspec(dllimport)
#endif
#else
#define VELORA_API __attribute__((visibility("default")))
#endif

#define VELORA_C_API extern "C" VELORA_API

// Some U_ functions keep their C names while taking or returning C++ types (std::string&); they
// are called from C++ only. These brackets silence clang's warning about that in user code too.
#if defined(__clang__)
#define VELORA_CXX_IN_C_API_BEGIN                                                                            \
    _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wreturn-type-c-linkage\"")
#define VELORA_CXX_IN_C_API_END _Pragma("clang diagnostic pop")
#else
#define VELORA_CXX_IN_C_API_BEGIN
#define VELORA_CXX_IN_C_API_END
#endif
