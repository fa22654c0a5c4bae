#include "platform/macos/card/CardMacOS.hpp"

#import <Foundation/Foundation.h>
#import <ImageIO/ImageIO.h>

#include <algorithm>
#include <limits>

#include "drawing/pictures/PictureLimits.hpp"
#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

std::uint32_t lengthUnder(CFStringRef key, NSDictionary* properties) {
    const auto value = valueFrom(properties[(__bridge NSString*)key]);
    const auto* const number = value ? value->as<std::int64_t>() : nullptr;
    constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
    return number ? static_cast<std::uint32_t>(std::clamp<std::int64_t>(*number, 0, kMost)) : 0;
}

// The size from the picture's header, without decoding.
PictureSize sizeOf(CGImageSourceRef source) {
    NSDictionary* const options = @{(__bridge NSString*)kCGImageSourceShouldCache : @NO};
    NSDictionary* const properties =
        (__bridge_transfer NSDictionary*)CGImageSourceCopyPropertiesAtIndex(
            source, 0, (__bridge CFDictionaryRef)options);
    return {lengthUnder(kCGImagePropertyPixelWidth, properties),
            lengthUnder(kCGImagePropertyPixelHeight, properties)};
}

}  // namespace

ImageRef decodeImageMacOS(ByteView encoded) {
    // The system creates a source from any data; only its properties show whether it is a picture.
    const CFHandle<CGImageSourceRef> source{
        CGImageSourceCreateWithData((__bridge CFDataRef)dataFrom(encoded), nullptr)};
    if (!source) return nullptr;
    const PictureSize size = sizeOf(source.get());
    if (!isDecodable(size)) return nullptr;
    NSDictionary* const options = @{
        (__bridge NSString*)kCGImageSourceCreateThumbnailFromImageAlways : @YES,
        (__bridge NSString*)kCGImageSourceCreateThumbnailWithTransform : @YES,
        (__bridge NSString*)kCGImageSourceShouldCacheImmediately : @YES,
        (__bridge NSString*)
        kCGImageSourceThumbnailMaxPixelSize : @(static_cast<long long>(keptLongerSide(size))),
    };
    CFHandle<CGImageRef> pixels{
        CGImageSourceCreateThumbnailAtIndex(source.get(), 0, (__bridge CFDictionaryRef)options)};
    if (!pixels) return nullptr;
    return std::make_shared<DecodedImage>(std::move(pixels));
}

}  // namespace quorvane
