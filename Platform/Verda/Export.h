#pragma once

/// Marks what the shared library exports; everything else is built with hidden visibility.
#define VERDA_EXPORT __attribute__((visibility("default")))
