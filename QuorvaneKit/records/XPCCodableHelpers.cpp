#include "QuorvaneKit/records/XPCCodableHelpers.hpp"

#include "QuorvaneKit/records/RecordCoding.hpp"

namespace quorvane {

template <typename Record>
CodingResult<Bytes> XPCCodableHelpers::encode(const Record& record) {
    return coding::writeRecord(record);
}

template <typename Record>
CodingResult<Record> XPCCodableHelpers::decode(ByteView text) {
    return coding::readRecord<Record>(text);
}

using Helpers = XPCCodableHelpers;
template CodingResult<Bytes> Helpers::encode(const QuorvanePlayerState&);
template CodingResult<QuorvanePlayerState> Helpers::decode(ByteView);
template CodingResult<Bytes> Helpers::encode(const LockScreenAddOnHello&);
template CodingResult<LockScreenAddOnHello> Helpers::decode(ByteView);
template CodingResult<Bytes> Helpers::encode(const LockScreenAddOnConfiguration&);
template CodingResult<LockScreenAddOnConfiguration> Helpers::decode(ByteView);
template CodingResult<Bytes> Helpers::encode(const LockScreenAddOnSighting&);
template CodingResult<LockScreenAddOnSighting> Helpers::decode(ByteView);
template CodingResult<Bytes> Helpers::encode(const CodablePoint&);
template CodingResult<CodablePoint> Helpers::decode(ByteView);
template CodingResult<Bytes> Helpers::encode(const CodableSizeWithVersion&);
template CodingResult<CodableSizeWithVersion> Helpers::decode(ByteView);

}  // namespace quorvane
