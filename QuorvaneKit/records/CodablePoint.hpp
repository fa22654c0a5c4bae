// Position of a desktop widget as the shared defaults store it.
#pragma once

namespace quorvane {

struct CodablePoint {
    double x = 0;
    double y = 0;
    bool operator==(const CodablePoint&) const = default;
};

}  // namespace quorvane
