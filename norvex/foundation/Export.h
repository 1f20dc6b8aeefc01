#pragma once

/// Marks what the shared library shows; everything else is hidden.
#define NORVEX_API __attribute__((visibility("default")))
