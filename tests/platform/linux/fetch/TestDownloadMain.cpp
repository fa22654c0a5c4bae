// The process that fetches pictures, with rules under which it reaches a test's server.

#include "platform/linux/fetch/download/PictureDownload.hpp"

int main() {
    return quorvane::downloadPicture({.mayConnect = [](auto address) { return address[0] == 127; },
                                      .certificates = TEST_CERTIFICATE,
                                      .seconds = 6});
}
