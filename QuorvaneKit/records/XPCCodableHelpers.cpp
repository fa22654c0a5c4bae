#include "QuorvaneKit/records/XPCCodableHelpers.hpp"

#include "QuorvaneKit/records/RecordCoding.hpp"

namespace quorvane {

template <CodableRecord Record>
CodingResult<Bytes> XPCCodableHelpers::encode(const Record& record) {
    return coding::writeRecord(record);
}

template <CodableRecord Record>
CodingResult<Record> XPCCodableHelpers::decode(Bytes text) {
    JSONText json{std::move(text)};
    return coding::readRecord<Record>(json);
}

using Helpers = XPCCodableHelpers;
template CodingResult<Bytes> Helpers::encode(const QuorvanePlayerState&);
template CodingResult<QuorvanePlayerState> Helpers::decode(Bytes);
template CodingResult<Bytes> Helpers::encode(const LockScreenAddOnHello&);
template CodingResult<LockScreenAddOnHello> Helpers::decode(Bytes);
template CodingResult<Bytes> Helpers::encode(const LockScreenAddOnConfiguration&);
template CodingResult<LockScreenAddOnConfiguration> Helpers::decode(Bytes);
template CodingResult<Bytes> Helpers::encode(const LockScreenAddOnSighting&);
template CodingResult<LockScreenAddOnSighting> Helpers::decode(Bytes);
template CodingResult<Bytes> Helpers::encode(const CodablePoint&);
template CodingResult<CodablePoint> Helpers::decode(Bytes);
template CodingResult<Bytes> Helpers::encode(const CodableSizeWithVersion&);
template CodingResult<CodableSizeWithVersion> Helpers::decode(Bytes);

}  // namespace quorvane
