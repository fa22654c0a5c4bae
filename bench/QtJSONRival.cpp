#include "bench/JSONRivals.hpp"

#if __has_include(<QJsonDocument>)
#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorvane {
namespace {

std::size_t decode(std::string_view text) {
    const auto bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
    const QJsonObject state = QJsonDocument::fromJson(bytes).object();
    const QString artwork = state["track"].toObject()["artworkData"].toString();
    return static_cast<std::size_t>(QByteArray::fromBase64(artwork.toLatin1()).size());
}

}  // namespace

std::optional<JSONRival> qtJSONRival() { return JSONRival{"Qt JSON", decode, nullptr}; }

}  // namespace quorvane

#else

namespace quorvane {
std::optional<JSONRival> qtJSONRival() { return std::nullopt; }
}  // namespace quorvane

#endif
