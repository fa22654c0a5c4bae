// ImageIO: what it is asked for is noted.
#include "tests/macos_runtime/fakes/ImageIOFakes.hpp"

#import <ImageIO/ImageIO.h>

#include "tests/macos_runtime/fakes/DrawingFakes.hpp"

namespace {
NSDictionary* propertiesOfAll;
bool decodes = true;
const macrt::AtReset reset{[] {
    propertiesOfAll = nil;
    decodes = true;
}};
std::string textOf(CFDictionaryRef options) { return macrt::describe((__bridge id)options); }
}  // namespace

@interface ImageSource : NSObject
@end
@implementation ImageSource
@end

extern "C" {

CFStringRef const kCGImagePropertyPixelWidth = (__bridge CFStringRef) @"PixelWidth";
CFStringRef const kCGImagePropertyPixelHeight = (__bridge CFStringRef) @"PixelHeight";
CFStringRef const kCGImageSourceShouldCache = (__bridge CFStringRef) @"ShouldCache";
CFStringRef const kCGImageSourceShouldCacheImmediately =
    (__bridge CFStringRef) @"ShouldCacheImmediately";
CFStringRef const kCGImageSourceCreateThumbnailFromImageAlways =
    (__bridge CFStringRef) @"FromImageAlways";
CFStringRef const kCGImageSourceCreateThumbnailWithTransform =
    (__bridge CFStringRef) @"WithTransform";
CFStringRef const kCGImageSourceThumbnailMaxPixelSize = (__bridge CFStringRef) @"MaxPixelSize";

CGImageSourceRef CGImageSourceCreateWithData(CFDataRef data, CFDictionaryRef options) {
    macrt::note("source of " + macrt::describe((__bridge id)data) + " " + textOf(options));
    return (__bridge_retained CGImageSourceRef)[ImageSource new];
}

CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef, size_t index,
                                                   CFDictionaryRef options) {
    macrt::note("properties at " + std::to_string(index) + " " + textOf(options));
    return (__bridge_retained CFDictionaryRef)propertiesOfAll;
}

CGImageRef CGImageSourceCreateThumbnailAtIndex(CGImageSourceRef, size_t index,
                                               CFDictionaryRef options) {
    macrt::note("thumbnail at " + std::to_string(index) + " " + textOf(options));
    return decodes ? macrt::makePicture("thumbnail", 256, 256) : nullptr;
}
}

namespace macrt {

void setPictureProperties(NSDictionary* properties, bool isDecodable) {
    propertiesOfAll = properties;
    decodes = isDecodable;
}

}  // namespace macrt
