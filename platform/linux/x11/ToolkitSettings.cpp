#include "platform/linux/x11/ToolkitSettings.hpp"

#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {
namespace {

// Reads bytes from the front. After reading past the end it has failed and returns only empty
// values.
class Reader {
public:
    explicit Reader(ByteView bytes)
        : rest_(bytes), isBigEndian_(!bytes.empty() && bytes.front() == std::byte{1}) {}

    bool hasFailed() const { return hasFailed_; }
    ByteView take(std::size_t length) {
        hasFailed_ = hasFailed_ || length > rest_.size();
        if (hasFailed_) return {};
        const ByteView taken = rest_.first(length);
        rest_ = rest_.subspan(length);
        return taken;
    }
    std::uint32_t number(std::size_t length) {
        const ByteView bytes = take(length);
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const std::size_t at = isBigEndian_ ? i : bytes.size() - 1 - i;
            value = value << 8 | std::to_integer<std::uint32_t>(bytes[at]);
        }
        return value;
    }
    std::string_view text(std::size_t length) {
        const std::string_view text = textOf(take(length));
        take((4 - length % 4) % 4);
        return text;
    }

private:
    ByteView rest_;
    bool isBigEndian_;
    bool hasFailed_ = false;
};

}  // namespace

std::optional<std::int32_t> toolkitSetting(X11Session& x11, std::string_view name) {
    // The settings of the first screen; separate screens with their own desktops are rare.
    const xcb_window_t owner = ownerOf(x11.connection(), x11.atom("_XSETTINGS_S0"));
    if (owner == XCB_WINDOW_NONE) return std::nullopt;
    const xcb_atom_t property = x11.atom("_XSETTINGS_SETTINGS");
    const std::string settings =
        textOf(x11.connection(), askForText(x11.connection(), owner, property, property), property);
    return numberIn(bytesOf(settings), name);
}

std::optional<std::int32_t> numberIn(ByteView settings, std::string_view name) {
    enum Type { integer, text, colour };
    Reader reader{settings};
    reader.take(4 + 4);  // the byte order, the serial number
    for (std::uint32_t count = reader.number(4); count > 0 && !reader.hasFailed(); --count) {
        const std::uint32_t type = reader.number(1);
        reader.take(1);
        const std::string_view found = reader.text(reader.number(2));
        reader.take(4);  // the serial number of the last change
        if (type == integer) {
            const std::uint32_t value = reader.number(4);
            if (found == name && !reader.hasFailed()) return static_cast<std::int32_t>(value);
        } else if (type == text) {
            reader.text(reader.number(4));
        } else if (type == colour) {
            reader.take(4 * 2);
        } else {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace quorvane
