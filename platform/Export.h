#pragma once

/// Marks what a shared library offers to others; all else is compiled hidden.
#define PLATFORM_EXPORT __attribute__((visibility("default")))
