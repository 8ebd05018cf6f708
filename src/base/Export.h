#pragma once

/// Marks what the shared library offers to other modules; everything else stays hidden in it.
#define HVCOREUI_EXPORT __attribute__((visibility("default")))
