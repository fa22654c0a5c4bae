// Pictures from web servers, each fetched by its own process.
#pragma once

#include <filesystem>

#include "platform/FetchPicture.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// Main thread only. The function refers to the loop; dropping its handle kills the process.
FetchPicture makeFetchPicture(EventLoop& loop, std::filesystem::path program);

}  // namespace quorvane
