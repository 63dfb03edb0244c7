#pragma once

#include <ostream>

#include "shelf/Display.h"

// Readable failure messages for the shelf's geometry types.
namespace mosswick {

inline void PrintTo(const ScreenPoint& p, std::ostream* os) { *os << "(" << p.x << ", " << p.y << ")"; }

inline void PrintTo(const ScreenRect& r, std::ostream* os) {
    *os << "(" << r.x << ", " << r.y << ", " << r.width << " x " << r.height << ")";
}

inline void PrintTo(const Display& d, std::ostream* os) {
    *os << "display ";
    PrintTo(d.frame, os);
}

}  // namespace mosswick
