// Conversion of records to JSON text and back. Keys are the field names, in their order; absent
// optionals are omitted; dates are ISO 8601 text; bytes are base64.
#pragma once

#include "QuorvaneKit/json/CodingError.hpp"
#include "QuorvaneKit/records/CodablePoint.hpp"
#include "QuorvaneKit/records/CodableSizeWithVersion.hpp"
#include "QuorvaneKit/records/LockScreenAddOnSighting.hpp"
#include "QuorvaneKit/records/LockScreenRecords.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {

// Any thread. Codes the records of the headers above.
struct XPCCodableHelpers {
    // Fails for numbers that are not finite and for text that is not UTF-8.
    template <typename Record>
    static CodingResult<Bytes> encode(const Record& record);

    // Strict: every type as declared, every required key present, every enumeration value known.
    // Null means an absent optional, unknown keys are skipped, and the first of two equal keys
    // counts. Memory use is at most proportional to the text.
    template <typename Record>
    static CodingResult<Record> decode(ByteView text);
};

}  // namespace quorvane
