#pragma once

/// Marks what the analysis library offers to hosts; everything else in it is hidden.
#define SECM_ANALYSIS_EXPORT __attribute__((visibility("default")))
