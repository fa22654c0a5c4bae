// Position and size of a desktop widget as the shared defaults store them.
#pragma once

#include <string>

namespace quorvane {

struct CodablePoint {
    double x = 0;
    double y = 0;
    bool operator==(const CodablePoint&) const = default;
};

struct CodableSizeWithVersion {
    double width = 0;
    double height = 0;
    std::string manifestVersion;  // of the manifest that the size was made for
    bool operator==(const CodableSizeWithVersion&) const = default;
};

}  // namespace quorvane
