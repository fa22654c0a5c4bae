#include "platform/linux/files/DefaultsFile.hpp"

#include <unistd.h>

#include <cstdio>

#include "platform/linux/files/FileLock.hpp"
#include "platform/linux/files/FilesLinux.hpp"
#include "platform/linux/files/PosixError.hpp"
#include "platform/linux/files/PropertyListLinux.hpp"

namespace quorvane {
namespace {

constexpr std::uint64_t kLargestDefaults = 16 << 20;
constexpr Duration kLockPatience = std::chrono::seconds{2};

std::filesystem::path lockOf(const std::filesystem::path& file) {
    return file.parent_path() / ("." + file.filename().string() + ".lock");
}

}  // namespace

DefaultsFile::DefaultsFile(std::filesystem::path file, Logger log)
    : file_(std::move(file)), log_(std::move(log)), files_(makeLiveRegularFiles()) {}

UserDefaults DefaultsFile::table() {
    return {.get = [this](const std::string& key) -> std::optional<PropertyValue> {
                auto found = values({key}).extract(key);
                return found ? std::optional{std::move(found.mapped())} : std::nullopt;
            },
            .getTogether = [this](const std::vector<std::string>& keys) { return values(keys); },
            .set = [this](const std::string& key,
                          std::optional<PropertyValue> value) { set(key, std::move(value)); },
            .removeDomain =
                [this] {
                    changes_.clear();
                    isRemoved_ = true;
                    flushAndLog();
                },
            .synchronize = [this] { return flush(); }};
}

PropertyDictionary DefaultsFile::values(const std::vector<std::string>& keys) {
    const bool isStored = !isRemoved_ && refresh();
    PropertyDictionary found;
    for (const std::string& key : keys) {
        if (const auto change = changes_.find(key); change != changes_.end()) {
            if (change->second) found.emplace(key, *change->second);
        } else if (const auto entry = stored_.find(key); isStored && entry != stored_.end()) {
            found.insert(*entry);
        }
    }
    return found;
}

void DefaultsFile::set(const std::string& key, std::optional<PropertyValue> value) {
    // Reject a value that no property list can hold; in changes_ it would block all later changes.
    if (value) {
        const auto list = xmlPropertyList(PropertyValue{PropertyDictionary{{key, *value}}});
        if (!list)
            return log_.error("defaults: %{public}s not set: %{public}s", key,
                              errorText(list.error()));
    }
    changes_.insert_or_assign(key, std::move(value));
    flushAndLog();
}

void DefaultsFile::flushAndLog() {
    if (const auto result = flush(); !result)
        log_.error("defaults: not written: %{public}s", errorText(result.error()));
}

Result<void> DefaultsFile::flush() {
    if (!isRemoved_ && changes_.empty()) return {};
    if (auto made = makePrivateFolders(file_.parent_path()); !made) return made;
    auto lock = FileLock::acquire(lockOf(file_), kLockPatience);
    if (!lock) return std::unexpected{std::move(lock).error()};
    auto written = writeChanges();
    // A removed domain leaves no lock file behind.
    if (written && !stamp_) lock->removeFile();
    return written;
}

// The caller holds the lock.
Result<void> DefaultsFile::writeChanges() {
    if (isRemoved_) {
        if (unlink(file_.c_str()) != 0 && errno != ENOENT)
            return posixError("unlink " + file_.string());
        isRemoved_ = false;
    }
    if (auto read = refresh(); !read) return read;
    PropertyDictionary merged = stored_;
    for (const auto& [key, value] : changes_) {
        if (value)
            merged.insert_or_assign(key, *value);
        else
            merged.erase(key);
    }
    if (merged != stored_) {
        auto list = xmlPropertyList(PropertyValue{merged});
        if (!list) return std::unexpected{std::move(list).error()};
        if (isMalformed_)
            if (auto kept = keepAside(); !kept) return kept;
        if (auto written = writeFileAtomically(file_, *list); !written) return written;
        stored_ = std::move(merged);
        isMalformed_ = false;
        if (const auto stamp = files_.stamp(file_)) stamp_ = *stamp;
    }
    changes_.clear();
    return {};
}

// Fails when the file exists but cannot be read, because a write would then destroy it.
Result<void> DefaultsFile::refresh() {
    const auto present = files_.stamp(file_);
    if (!present && present.error().code != ENOENT && present.error().code != ENOTDIR)
        return std::unexpected{present.error()};
    if (present ? stamp_ == *present : !stamp_) return {};
    stored_.clear();
    stamp_.reset();
    isMalformed_ = false;
    if (!present) return {};
    auto file = files_.read(file_, kLargestDefaults);
    if (!file) return std::unexpected{std::move(file).error()};
    stamp_ = file->stamp;
    auto list = parsePropertyList(file->contents);
    if (list && list->as<PropertyDictionary>()) {
        stored_ = std::get<PropertyDictionary>(std::move(list->value));
    } else {
        isMalformed_ = true;
        log_.error("defaults: %{public}s is not a property list with a dictionary", file_.string());
    }
    return {};
}

Result<void> DefaultsFile::keepAside() const {
    std::string kept = file_.string() + ".malformed";
    for (int number = 2; access(kept.c_str(), F_OK) == 0; ++number)
        kept = file_.string() + ".malformed." + std::to_string(number);
    if (rename(file_.c_str(), kept.c_str()) != 0) return posixError("rename to " + kept);
    log_.standard("defaults: kept the unreadable file as %{public}s", kept);
    return {};
}

}  // namespace quorvane
