// The one way in which records become JSON text and come back: keys as the fields are named, in
// their order; absent optionals left out; dates as ISO 8601 text; bytes as base64.
#pragma once

#include <concepts>

#include "QuorvaneKit/json/CodingError.hpp"
#include "QuorvaneKit/records/CodablePoint.hpp"
#include "QuorvaneKit/records/CodableSizeWithVersion.hpp"
#include "QuorvaneKit/records/LockScreenAddOnSighting.hpp"
#include "QuorvaneKit/records/LockScreenRecords.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {

template <typename T>
concept CodableRecord =
    std::same_as<T, QuorvanePlayerState> || std::same_as<T, LockScreenAddOnHello> ||
    std::same_as<T, LockScreenAddOnConfiguration> || std::same_as<T, LockScreenAddOnSighting> ||
    std::same_as<T, CodablePoint> || std::same_as<T, CodableSizeWithVersion>;

// Any thread.
struct XPCCodableHelpers {
    // Fails for numbers that are not finite and for text that is not UTF-8.
    template <CodableRecord Record>
    static CodingResult<Bytes> encode(const Record& record);

    // Strict: every type as declared, every required key present, every enumeration value known.
    // Null stands for an absent optional, keys that are not known are passed over, of a key that
    // stands twice the first counts. Takes memory in proportion to the text at most.
    template <CodableRecord Record>
    static CodingResult<Record> decode(Bytes text);
};

}  // namespace quorvane
