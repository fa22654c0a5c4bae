#include "platform/LogRendering.hpp"

#include <cstdio>

namespace quorvane {
namespace {

std::string renderArgument(const LogPlaceholder& placeholder, const LogArgument& argument,
                           bool showsPrivate) {
    if (const auto* text = std::get_if<std::string_view>(&argument))
        return placeholder.isPrivate && !showsPrivate ? "<private>" : std::string{*text};
    if (const auto* number = std::get_if<std::int64_t>(&argument)) {
        if (placeholder.kind == LogPlaceholder::Kind::boolean)
            return *number != 0 ? "true" : "false";
        return std::to_string(*number);
    }
    if (const auto* number = std::get_if<std::uint64_t>(&argument)) return std::to_string(*number);
    char buffer[400];  // the longest double in "%f" has 309 digits before its point
    const int length = std::snprintf(buffer, sizeof buffer, "%f", std::get<double>(argument));
    return {buffer, static_cast<std::size_t>(length)};
}

}  // namespace

std::string logLineText(const LogLine& line, bool showsPrivate) {
    std::string text;
    std::size_t from = 0;
    LogPlaceholder placeholder;
    for (const LogArgument& argument : line.arguments) {
        if (!nextPlaceholder(line.format, from, placeholder)) break;
        text += line.format.substr(from, placeholder.begin - from);
        text += renderArgument(placeholder, argument, showsPrivate);
        from = placeholder.end;
    }
    return text += line.format.substr(from);
}

}  // namespace quorvane
