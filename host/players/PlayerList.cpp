#include "host/players/PlayerList.hpp"

#include "host/settings/TextTable.hpp"
#include "platform/Character.hpp"

namespace quorvane {

namespace {

constexpr char kRows[] = "players";

}  // namespace

PropertyDictionary PlayerList::userInfo() const {
    PropertyArray texts;
    for (const PlayerRow& row : rows)
        for (const std::string& text : {row.name, row.state, row.explanation})
            texts.push_back({text});
    return {{kRows, {std::move(texts)}}};
}

PlayerList PlayerList::of(const PropertyDictionary& userInfo) {
    std::vector<std::string> texts;
    if (const auto* const array = find<PropertyArray>(userInfo, kRows))
        for (const PropertyValue& value : *array)
            if (const auto* const text = value.as<std::string>()) texts.push_back(printable(*text));
    PlayerList list;
    for (std::size_t i = 0; i + 3 <= texts.size(); i += 3)
        list.rows.push_back({texts[i], texts[i + 1], texts[i + 2]});
    return list;
}

std::string PlayerList::text() const {
    if (rows.empty()) return "No players to follow.\n";
    std::vector<std::vector<std::string>> table{{"PLAYER", "STATE", ""}};
    for (const PlayerRow& row : rows) table.push_back({row.name, row.state, row.explanation});
    return textTable(std::move(table));
}

}  // namespace quorvane
