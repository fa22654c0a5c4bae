// Keys of every record on the wire, in the order in which they are written. Only for the coders.
#pragma once

#include <string_view>
#include <tuple>

#include "QuorvaneKit/records/CodablePoint.hpp"
#include "QuorvaneKit/records/CodableSizeWithVersion.hpp"
#include "QuorvaneKit/records/LockScreenAddOnSighting.hpp"
#include "QuorvaneKit/records/LockScreenRecords.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"

namespace quorvane {

// A field of an optional type may always be absent. `keepsDefault` is for other fields that older
// senders omit.
enum class WhenAbsent { fails, keepsDefault };

template <typename Record, typename Member>
struct RecordField {
    std::string_view key;
    Member Record::*member;
    WhenAbsent whenAbsent = WhenAbsent::fails;
};

template <typename Record>
struct RecordFields;

template <>
struct RecordFields<XPCTrack> {
    static constexpr std::tuple kAll{
        RecordField{"title", &XPCTrack::title},
        RecordField{"artist", &XPCTrack::artist},
        RecordField{"album", &XPCTrack::album},
        RecordField{"albumArtist", &XPCTrack::albumArtist},
        RecordField{"duration", &XPCTrack::duration},
        RecordField{"artworkData", &XPCTrack::artworkData},
        RecordField{"isLoved", &XPCTrack::isLoved},
        RecordField{"isAdvertisement", &XPCTrack::isAdvertisement, WhenAbsent::keepsDefault},
        RecordField{"isLiveStream", &XPCTrack::isLiveStream, WhenAbsent::keepsDefault},
        RecordField{"motionArtworkLoopID", &XPCTrack::motionArtworkLoopID},
    };
};

template <>
struct RecordFields<XPCPlayerCapabilities> {
    static constexpr std::tuple kAll{
        RecordField{"canLove", &XPCPlayerCapabilities::canLove},
        RecordField{"canDislike", &XPCPlayerCapabilities::canDislike},
        RecordField{"canRate", &XPCPlayerCapabilities::canRate},
        RecordField{"canAddToLibrary", &XPCPlayerCapabilities::canAddToLibrary},
        RecordField{"hasThreeStateRepeat", &XPCPlayerCapabilities::hasThreeStateRepeat},
    };
};

template <>
struct RecordFields<QuorvanePlayerState> {
    static constexpr std::tuple kAll{
        RecordField{"track", &QuorvanePlayerState::track},
        RecordField{"playerState", &QuorvanePlayerState::playerState},
        RecordField{"playerType", &QuorvanePlayerState::playerType},
        RecordField{"capabilities", &QuorvanePlayerState::capabilities},
        RecordField{"volume", &QuorvanePlayerState::volume},
        RecordField{"isMuted", &QuorvanePlayerState::isMuted},
        RecordField{"shuffleEnabled", &QuorvanePlayerState::shuffleEnabled},
        RecordField{"repeatMode", &QuorvanePlayerState::repeatMode},
        RecordField{"rating", &QuorvanePlayerState::rating},
        RecordField{"isLoved", &QuorvanePlayerState::isLoved},
        RecordField{"isDisliked", &QuorvanePlayerState::isDisliked},
        RecordField{"playerPosition", &QuorvanePlayerState::playerPosition},
        RecordField{"timestamp", &QuorvanePlayerState::timestamp},
    };
};

template <>
struct RecordFields<LockScreenAddOnHello> {
    static constexpr std::tuple kAll{
        RecordField{"protocolVersion", &LockScreenAddOnHello::protocolVersion},
        RecordField{"addOnVersion", &LockScreenAddOnHello::addOnVersion},
        RecordField{"macOSVersion", &LockScreenAddOnHello::macOSVersion},
        RecordField{"supportsThisMacOS", &LockScreenAddOnHello::supportsThisMacOS},
        RecordField{"installID", &LockScreenAddOnHello::installID},
        RecordField{"supersedesRemoval", &LockScreenAddOnHello::supersedesRemoval},
    };
};

template <>
struct RecordFields<LockScreenAddOnConfiguration> {
    static constexpr std::tuple kAll{
        RecordField{"isEnabled", &LockScreenAddOnConfiguration::isEnabled},
        RecordField{"removalRequested", &LockScreenAddOnConfiguration::removalRequested},
        RecordField{"minimumAddOnVersion", &LockScreenAddOnConfiguration::minimumAddOnVersion},
    };
};

template <>
struct RecordFields<LockScreenAddOnSighting> {
    static constexpr std::tuple kAll{
        RecordField{"addOnVersion", &LockScreenAddOnSighting::addOnVersion},
        RecordField{"macOSVersion", &LockScreenAddOnSighting::macOSVersion},
        RecordField{"supportsThisMacOS", &LockScreenAddOnSighting::supportsThisMacOS},
        RecordField{"date", &LockScreenAddOnSighting::date},
        RecordField{"installID", &LockScreenAddOnSighting::installID},
    };
};

template <>
struct RecordFields<CodablePoint> {
    static constexpr std::tuple kAll{
        RecordField{"x", &CodablePoint::x},
        RecordField{"y", &CodablePoint::y},
    };
};

template <>
struct RecordFields<CodableSizeWithVersion> {
    static constexpr std::tuple kAll{
        RecordField{"width", &CodableSizeWithVersion::width},
        RecordField{"height", &CodableSizeWithVersion::height},
        RecordField{"manifestVersion", &CodableSizeWithVersion::manifestVersion},
    };
};

}  // namespace quorvane
