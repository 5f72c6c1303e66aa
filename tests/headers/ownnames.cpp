// SPDX-License-Identifier: MIT
#include <threadgenerateicon.h>

// What the library calls its private things by, a host may call things of its own.
enum class Decoration { None };
enum class IconPlan { None };
enum class IconSetWriter { None };
