// Entry of the process that fetches a picture for the host.

#include "platform/PublicAddress.hpp"
#include "platform/linux/fetch/download/PictureDownload.hpp"

int main() { return quorvane::downloadPicture({.mayConnect = quorvane::isPublicAddress}); }
