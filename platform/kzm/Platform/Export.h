#pragma once

// Marks what the platform's stand-in exports from its shared library.
#define KZM_PLATFORM_EXPORT __attribute__((visibility("default")))
