// Size of a desktop widget as the shared defaults store it, with the manifest it was made for.
#pragma once

#include <string>

namespace quorvane {

struct CodableSizeWithVersion {
    double width = 0;
    double height = 0;
    std::string manifestVersion;
    bool operator==(const CodableSizeWithVersion&) const = default;
};

}  // namespace quorvane
