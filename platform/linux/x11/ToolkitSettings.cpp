#include "platform/linux/x11/ToolkitSettings.hpp"

#include <string>

#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {

std::optional<std::int32_t> toolkitSetting(X11Connection& x11, std::string_view name) {
    // The settings of the first screen; separate screens with their own desktops are rare.
    const xcb_window_t owner = ownerOf(x11.connection(), x11.atom("_XSETTINGS_S0"));
    if (owner == XCB_WINDOW_NONE) return std::nullopt;
    const xcb_atom_t property = x11.atom("_XSETTINGS_SETTINGS");
    return numberIn(
        textOf(x11.connection(), askForText(x11.connection(), owner, property, property), property),
        name);
}

// A setting is its type, an unused byte, two bytes with the length of its name, the name, a serial
// number of four bytes, and its value. Name and value begin at multiples of four.
std::optional<std::int32_t> numberIn(std::string_view settings, std::string_view name) {
    constexpr std::size_t kHeader = 12;
    constexpr char kInteger = 0;
    const bool isBigEndian = settings.starts_with('\1');
    const auto length = static_cast<char>(name.size());
    std::string entry = isBigEndian ? std::string{'\0', length} : std::string{length, '\0'};
    entry += name;
    const std::size_t place = settings.find(entry, kHeader + 2);
    if (place == settings.npos || settings[place - 2] != kInteger) return std::nullopt;
    const std::size_t end = (place + entry.size() + 3) / 4 * 4 + 4 + 4;
    if (settings.size() < end) return std::nullopt;
    std::uint32_t value = 0;
    for (std::size_t i = 4; i > 0; --i)
        value = value << 8 | static_cast<unsigned char>(settings[end - (isBigEndian ? i : 5 - i)]);
    return static_cast<std::int32_t>(value);
}

}  // namespace quorvane
