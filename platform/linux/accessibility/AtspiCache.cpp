// The object cache for clients, always empty: there are few objects, and querying one costs less
// than updating every client's copies.
#include "platform/linux/accessibility/AtspiObject.hpp"

namespace quorvane {
namespace {

int items(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "a((so)(so)(so)iiassusau)", 0);
}

}  // namespace

constinit const sd_bus_vtable kAtspiCacheMembers[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetItems", "", "a((so)(so)(so)iiassusau)", items, 0), SD_BUS_VTABLE_END};

}  // namespace quorvane
