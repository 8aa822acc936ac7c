#pragma once

/// Marks what a shared library exports; everything else is compiled hidden.
#define PLATFORM_EXPORT __attribute__((visibility("default")))
